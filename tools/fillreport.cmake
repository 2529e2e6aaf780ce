# fillreport: which keys answer the named fields of a folder of pages (native and Windows).
set(QB_FILL_REPORT_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/fill_report.cpp ${CMAKE_SOURCE_DIR}/keys/key_text.cpp)
qb_tool(NAME fillreport SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/fillreport.cpp ${QB_FILL_REPORT_SOURCES})

# The sample order form with the sample keys: every field answered but the one
# that a first scan asks about.
add_test(NAME fillreport_sample
         COMMAND fillreport ${CMAKE_SOURCE_DIR}/resources/sample/keys.txt ${CMAKE_SOURCE_DIR}/resources/sample)
set_tests_properties(fillreport_sample PROPERTIES
  PASS_REGULAR_EXPRESSION "referrer +-\n1 pages: 8 fields, 7 answered")
if(QB_WINDOWS)
  set_tests_properties(fillreport_sample PROPERTIES FIXTURES_REQUIRED wine)
endif()
