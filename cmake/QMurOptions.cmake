# How every target of the project is compiled.

# Flags on which the bytes depend. No freedom is left to the compiler: no contraction, no excess precision. SSE2 is the
# floor on every x86 build.
add_library(q_Mur_arithmetic INTERFACE)
target_compile_options(q_Mur_arithmetic INTERFACE -ffp-contract=off -fno-math-errno)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64|amd64")
  target_compile_options(q_Mur_arithmetic INTERFACE -msse2 -mfpmath=sse)
  if(Q_MUR_INSTRUCTION_SET)
    target_compile_options(q_Mur_arithmetic INTERFACE -march=${Q_MUR_INSTRUCTION_SET})
  endif()
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Hosts built by other compilers promise a stack aligned to 4 bytes only.
    target_compile_options(q_Mur_arithmetic INTERFACE -mstackrealign)
  endif()
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Clang takes -mfpmath on 32-bit targets alone.
  set_property(TARGET q_Mur_arithmetic PROPERTY INTERFACE_COMPILE_OPTIONS -ffp-contract=off -fno-math-errno -msse2)
  if(Q_MUR_INSTRUCTION_SET)
    target_compile_options(q_Mur_arithmetic INTERFACE -march=${Q_MUR_INSTRUCTION_SET})
  endif()
endif()
target_compile_definitions(q_Mur_arithmetic INTERFACE Q_MUR_LANES=$<BOOL:${Q_MUR_LANES}>)

add_library(q_Mur_warnings INTERFACE)
target_compile_options(q_Mur_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wold-style-cast -Wcast-align -Wcast-qual
  -Wformat=2 -Wundef -Wnon-virtual-dtor -Woverloaded-virtual)
if(Q_MUR_WERROR)
  target_compile_options(q_Mur_warnings INTERFACE -Werror)
endif()
