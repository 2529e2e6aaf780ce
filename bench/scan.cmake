qb_bench(NAME scan_page_pass SOURCES scan_page_pass.cpp)
target_compile_definitions(scan_page_pass PRIVATE QB_CORPUS_DIR="${QB_CORPUS_DIR}")

# The whole "Scan HTML" under Wine beside the download dialog and the fill alone;
# bench/scan_timing.sh runs it with a loopback server.
qb_bench(NAME scan_bench SOURCES scan_bench.cpp ${CMAKE_SOURCE_DIR}/keys/key_text.cpp WIN)
