# Listing 32,000 saved pages in the Links view beside a bare directory walk, under
# the Wine session of the build tree:
#   build/win/wine-run.sh build/win/bench/links_listing_bench.exe [RUNS] [FOLDER]
qb_bench(NAME links_listing_bench SOURCES links_listing_bench.cpp WIN)
