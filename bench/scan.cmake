qb_bench(NAME scan_page_pass SOURCES scan_page_pass.cpp)
target_compile_definitions(scan_page_pass PRIVATE QB_CORPUS_DIR="${QB_CORPUS_DIR}")
