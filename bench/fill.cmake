# The whole fill of a 1 MiB page against a full key database.
qb_bench(NAME fill_bench SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/fill_bench.cpp)
