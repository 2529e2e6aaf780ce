# Page download through the download dialog; bench/acquire_download.sh runs it
# beside curl against the same nginx.
qb_bench(NAME acquire_download_bench SOURCES acquire_download_bench.cpp WIN)
