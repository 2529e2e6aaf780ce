qb_tool(NAME formdump SOURCES formdump.cpp)

# The tool end to end on a real page: relative action resolved from the host.
add_test(NAME formdump_page
         COMMAND formdump ${CMAKE_SOURCE_DIR}/tests/scan/pages/relative_action.htm www.example.com/dir/page.htm)
set_tests_properties(formdump_page PROPERTIES
  PASS_REGULAR_EXPRESSION "\"action\":\"http://www.example.com/cgi-bin/post.cgi\"")
if(QB_WINDOWS)
  set_tests_properties(formdump_page PROPERTIES FIXTURES_REQUIRED wine)
endif()
