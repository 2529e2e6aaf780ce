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
# folder, where the run command takes it for the program folder.
set(QB_STARTER_KEYS ${CMAKE_SOURCE_DIR}/resources/starter/keys.txt)
set(QB_STARTER_DATABASE ${CMAKE_BINARY_DIR}/Databases/Starter.dat)
if(CMAKE_CROSSCOMPILING)
  # As for the help file: a copy for the build machine, so no Wine is needed.
  find_program(QB_HOST_CXX NAMES c++ clang++ g++ REQUIRED)
  set(QB_HOST_MAKEKEYDB_SOURCES
      ${QB_MAKEKEYDB_SOURCES} ${CMAKE_SOURCE_DIR}/keys/key_file.cpp ${CMAKE_SOURCE_DIR}/keys/key_table.cpp
      ${CMAKE_SOURCE_DIR}/keys/durable_file_posix.cpp ${CMAKE_SOURCE_DIR}/base/textblock.cpp
      ${CMAKE_SOURCE_DIR}/base/textblock_heap.cpp ${CMAKE_SOURCE_DIR}/base/user_message.cpp)
  set(QB_HOST_MAKEKEYDB_HEADERS
      ${CMAKE_SOURCE_DIR}/keys/key_text.h ${CMAKE_SOURCE_DIR}/keys/key_file.h ${CMAKE_SOURCE_DIR}/keys/key_table.h
      ${CMAKE_SOURCE_DIR}/keys/durable_file.h ${CMAKE_SOURCE_DIR}/base/textblock.h
      ${CMAKE_SOURCE_DIR}/base/user_message.h ${CMAKE_SOURCE_DIR}/base/settings.h)
  set(maker ${CMAKE_BINARY_DIR}/host/makekeydb)
  add_custom_command(
    OUTPUT ${maker}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/host
    COMMAND ${QB_HOST_CXX} -std=c++17 -O2 -I${CMAKE_SOURCE_DIR} -o ${maker} ${QB_HOST_MAKEKEYDB_SOURCES}
    DEPENDS ${QB_HOST_MAKEKEYDB_SOURCES} ${QB_HOST_MAKEKEYDB_HEADERS}
    COMMENT "Building makekeydb for the build machine"
    VERBATIM)
  set(maker_target ${maker})
else()
  set(maker $<TARGET_FILE:makekeydb>)
  set(maker_target makekeydb)
endif()
add_custom_command(
  OUTPUT ${QB_STARTER_DATABASE}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/Databases
  COMMAND ${maker} ${QB_STARTER_KEYS} ${QB_STARTER_DATABASE}
  DEPENDS ${maker_target} ${QB_STARTER_KEYS}
  COMMENT "Writing Databases/Starter.dat"
  VERBATIM)
add_custom_target(qb_starter_database ALL DEPENDS ${QB_STARTER_DATABASE})
