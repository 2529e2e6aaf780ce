# hlpwrite: help topic sources -> WinHelp file. The build writes QBHELP.HLP with it
# from resources/help (the contents topic first) into the build tree's top folder.
set(QB_HLPWRITE_SOURCES
    ${CMAKE_CURRENT_SOURCE_DIR}/hlpwrite.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/help_source.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_writer.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_topic.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_blocks.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_directory.cpp)
set(QB_HLPWRITE_HEADERS
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/help_source.h
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_writer.h
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_topic.h
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_blocks.h
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_bytes.h
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_directory.h)
qb_tool(NAME hlpwrite SOURCES ${QB_HLPWRITE_SOURCES})

set(QB_HELP_TOPICS
    contents main_window create_keys key_editor databases new_database scan_page
    no_match teach_key scan_options merge merge_databases preview options browser
    saved_pages)
list(TRANSFORM QB_HELP_TOPICS PREPEND ${CMAKE_SOURCE_DIR}/resources/help/)
list(TRANSFORM QB_HELP_TOPICS APPEND .txt)
set(QB_HELP_FILE ${CMAKE_BINARY_DIR}/QBHELP.HLP)

qb_build_runner(writer hlpwrite SOURCES ${QB_HLPWRITE_SOURCES} HEADERS ${QB_HLPWRITE_HEADERS})
add_custom_command(
  OUTPUT ${QB_HELP_FILE}
  COMMAND ${writer} --title "Quellbarrow Help" ${QB_HELP_FILE} ${QB_HELP_TOPICS}
  DEPENDS ${writer_DEPENDS} ${QB_HELP_TOPICS}
  COMMENT "Writing QBHELP.HLP"
  VERBATIM)
add_custom_target(qb_help ALL DEPENDS ${QB_HELP_FILE})
