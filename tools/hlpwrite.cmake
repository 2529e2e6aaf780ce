# hlpwrite: help topic sources -> WinHelp file.
set(QB_HLPWRITE_SOURCES
    ${CMAKE_CURRENT_SOURCE_DIR}/hlpwrite.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/help_source.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_writer.cpp)
set(QB_HLPWRITE_HEADERS
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/help_source.h
    ${CMAKE_CURRENT_SOURCE_DIR}/helpfile/hlp_writer.h)
qb_tool(NAME hlpwrite SOURCES ${QB_HLPWRITE_SOURCES})

