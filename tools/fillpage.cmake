# fillpage: the whole fill of a saved page with a key database, no prompts.
qb_tool(NAME fillpage SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/fillpage.cpp)

# Expected bytes of a filled page and a request text, and the failures.
set(fillpage_emulator "")
if(QB_WINDOWS)
  set(fillpage_emulator ${CMAKE_BINARY_DIR}/wine-run.sh)
endif()
add_test(NAME fillpage_pages
         COMMAND ${CMAKE_SOURCE_DIR}/tests/scan/fillpage_test.sh ${CMAKE_SOURCE_DIR}/tests/scan/pages
                 ${CMAKE_CURRENT_BINARY_DIR}/fillpage_pages $<TARGET_FILE:fillpage> $<TARGET_FILE:makekeydb>
                 ${fillpage_emulator})
if(QB_WINDOWS)
  set_tests_properties(fillpage_pages PROPERTIES FIXTURES_REQUIRED wine)
endif()
