# Native build of the platform-free code with clang, for the sanitizers and libFuzzer.
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
