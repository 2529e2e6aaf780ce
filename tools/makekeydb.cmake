# makekeydb: readable key list -> key database (native and Windows).
qb_tool(NAME makekeydb SOURCES makekeydb.cpp ${CMAKE_SOURCE_DIR}/keys/key_text.cpp)

# The sample key list must always build into a database.
add_test(NAME makekeydb_sample
         COMMAND makekeydb ${CMAKE_SOURCE_DIR}/resources/sample/keys.txt
                 ${CMAKE_CURRENT_BINARY_DIR}/Sample.dat)
if(QB_WINDOWS)
  set_tests_properties(makekeydb_sample PROPERTIES FIXTURES_REQUIRED wine)
endif()
