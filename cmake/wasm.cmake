# WebAssembly, with Clang, lld and Debian's libraries for it (wasi-libc, libc++-dev-wasm32, libclang-rt-dev-wasm32).
# Programs run under Node (nodejs).
list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}")
set(CMAKE_SYSTEM_NAME WASI)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
set(CMAKE_CXX_COMPILER clang++)
# These libraries know no exceptions.
set(CMAKE_CXX_FLAGS_INIT "--target=wasm32-wasi -msimd128 -fno-exceptions")
# lld leaves a stack of 64 KiB, if nothing is said, and puts it where what overflows it lands in data.
# At any other -O Clang has a wasm-opt that it finds work over the module, which knows less of vectors than it needs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-O0 -Wl,-z,stack-size=1048576,--stack-first")
set(CMAKE_FIND_ROOT_PATH /usr/lib/wasm32-wasi)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/under-node")
