# The Keys view filled with 2000 keys in each sort order, in a real main window
# (Windows only; run under the Wine session of the build tree).
qb_bench(NAME key_list_bench SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/key_list_bench.cpp WIN)
