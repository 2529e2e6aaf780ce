# Add / Compare of 2000 loaded keys into a table of 2000, beside loading both files.
qb_bench(NAME key_merge_bench SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/key_merge_bench.cpp)
