# Opening the key editor on a full table of 2000 keys, under Wine.
qb_bench(NAME key_editor_bench SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/key_editor_bench.cpp WIN)
