# Load and save of full key databases.
qb_bench(NAME keys_file_bench SOURCES keys_file_bench.cpp)
