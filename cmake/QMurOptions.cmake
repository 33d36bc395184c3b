# How every target of the project is compiled.

# Flags on which the bytes depend. No freedom is left to the compiler: no contraction, no excess precision. SSE2 is the
# floor on every x86 build.
add_library(q_Mur_arithmetic INTERFACE)
target_compile_options(q_Mur_arithmetic INTERFACE -ffp-contract=off -fno-math-errno)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64|amd64")
  target_compile_options(q_Mur_arithmetic INTERFACE -msse2)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4 OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang") # which takes it on 32-bit targets alone
    target_compile_options(q_Mur_arithmetic INTERFACE -mfpmath=sse)
  endif()
  if(Q_MUR_INSTRUCTION_SET)
    target_compile_options(q_Mur_arithmetic INTERFACE -march=${Q_MUR_INSTRUCTION_SET})
  endif()
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Hosts built by other compilers promise a stack aligned to 4 bytes only.
    target_compile_options(q_Mur_arithmetic INTERFACE -mstackrealign)
  endif()
endif()
if(WASI)
  # Clang 14 moves a load that fills a vector behind a store that follows it, and where it makes vectors of straight code
  # it makes such loads of numbers that are about to change. Any -O that stands behind this option takes it back.
  target_compile_options(q_Mur_arithmetic INTERFACE -fno-slp-vectorize)
endif()
# What is installed says nothing of where and when it was built. Without debugging information nothing names a path.
set(Q_MUR_WITHOUT_PATHS "$<$<NOT:$<CONFIG:Release>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
if(WIN32)
  add_link_options(-Wl,--no-insert-timestamp)
endif()
target_compile_definitions(q_Mur_arithmetic INTERFACE Q_MUR_LANES=$<BOOL:${Q_MUR_LANES}>)
if(Q_MUR_SOFT_WIDE)
  target_compile_definitions(q_Mur_arithmetic INTERFACE Q_MUR_SOFT_WIDE)
endif()
# The integers that stand in for the x87 unit are of 128 bits.
include(CheckCXXSourceCompiles)
check_cxx_source_compiles("__extension__ typedef unsigned __int128 Wide; int main() { return static_cast<int>(Wide()); }"
  Q_MUR_SOFT_WIDE_COMPILES)
if((Q_MUR_SOFT_WIDE OR NOT CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64|amd64") AND NOT Q_MUR_SOFT_WIDE_COMPILES)
  message(FATAL_ERROR "Full width without an x87 unit needs integers of 128 bits, which this target lacks")
endif()

add_library(q_Mur_warnings INTERFACE)
target_compile_options(q_Mur_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wold-style-cast -Wcast-align -Wcast-qual
  -Wformat=2 -Wundef -Wnon-virtual-dtor -Woverloaded-virtual)
if(Q_MUR_WERROR)
  target_compile_options(q_Mur_warnings INTERFACE -Werror)
endif()
