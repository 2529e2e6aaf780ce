# fillreport: which keys answer the named fields of a folder of pages (native and Windows).
set(QB_FILL_REPORT_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/fill_report.cpp ${CMAKE_SOURCE_DIR}/keys/key_text.cpp)
qb_tool(NAME fillreport SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/fillreport.cpp ${QB_FILL_REPORT_SOURCES})
