# makekeydb: readable key list -> key database (native and Windows).
set(QB_MAKEKEYDB_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/makekeydb.cpp ${CMAKE_SOURCE_DIR}/keys/key_text.cpp)
qb_tool(NAME makekeydb SOURCES ${QB_MAKEKEYDB_SOURCES})

# The sample key list must always build into a database.
add_test(NAME makekeydb_sample
         COMMAND makekeydb ${CMAKE_SOURCE_DIR}/resources/sample/keys.txt
                 ${CMAKE_CURRENT_BINARY_DIR}/Sample.dat)
if(QB_WINDOWS)
  set_tests_properties(makekeydb_sample PROPERTIES FIXTURES_REQUIRED wine)
endif()

# The build writes the starter database into Databases/ of the build tree's top
# folder, where the run command takes it for the program folder (as the help file).
set(QB_STARTER_KEYS ${CMAKE_SOURCE_DIR}/resources/starter/keys.txt)
set(QB_STARTER_DATABASE ${CMAKE_BINARY_DIR}/Databases/Starter.dat)
qb_build_runner(maker makekeydb
  SOURCES ${QB_MAKEKEYDB_SOURCES} ${CMAKE_SOURCE_DIR}/keys/key_file.cpp ${CMAKE_SOURCE_DIR}/keys/key_table.cpp
          ${CMAKE_SOURCE_DIR}/keys/durable_file_posix.cpp ${CMAKE_SOURCE_DIR}/base/textblock.cpp
          ${CMAKE_SOURCE_DIR}/base/textblock_heap.cpp ${CMAKE_SOURCE_DIR}/base/user_message.cpp
  HEADERS ${CMAKE_SOURCE_DIR}/keys/key_text.h ${CMAKE_SOURCE_DIR}/keys/key_file.h ${CMAKE_SOURCE_DIR}/keys/key_table.h
          ${CMAKE_SOURCE_DIR}/keys/durable_file.h ${CMAKE_SOURCE_DIR}/base/textblock.h
          ${CMAKE_SOURCE_DIR}/base/user_message.h ${CMAKE_SOURCE_DIR}/base/settings.h)
add_custom_command(
  OUTPUT ${QB_STARTER_DATABASE}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/Databases
  COMMAND ${maker} ${QB_STARTER_KEYS} ${QB_STARTER_DATABASE}
  DEPENDS ${maker_DEPENDS} ${QB_STARTER_KEYS}
  COMMENT "Writing Databases/Starter.dat"
  VERBATIM)
add_custom_target(qb_starter_database ALL DEPENDS ${QB_STARTER_DATABASE})
