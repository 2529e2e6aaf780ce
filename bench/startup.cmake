# Start-up to the idle message loop, beside a minimal Win32 program; run by
# bench/startup.sh under the Wine session of the build tree.
if(QB_WINDOWS)
  add_executable(startup_minimal WIN32 startup_minimal.cpp)
  target_link_libraries(startup_minimal PRIVATE user32 gdi32)
endif()
qb_bench(NAME startup_bench SOURCES startup_bench.cpp WIN)
