# The host compiled by Clang for the ABI of MSVC and linked by lld-link against q_Mur.lib. Neither a C runtime nor the
# platform's headers are at hand, so it makes its import library of kernel32 itself.

q_mur_find_llvm_program(Q_MUR_CLANG clang++)
q_mur_find_llvm_program(Q_MUR_LLD_LINK lld-link)
q_mur_find_llvm_program(Q_MUR_LLVM_DLLTOOL llvm-dlltool)
if(NOT Q_MUR_LIB OR NOT Q_MUR_CLANG OR NOT Q_MUR_LLD_LINK OR NOT Q_MUR_LLVM_DLLTOOL)
  add_test(NAME link_msvc_host COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/tests/support/skip.py"
    "clang++, lld-link and llvm-dlltool are needed, and at least one is not installed")
  set_tests_properties(link_msvc_host PROPERTIES SKIP_RETURN_CODE 77)
  return()
endif()

if(Q_MUR_MSVC_SCHEME STREQUAL msvc32)
  set(triple i686-pc-windows-msvc)
  set(dlltool_machine i386)
  set(machine x86)
else()
  set(triple x86_64-pc-windows-msvc)
  set(dlltool_machine i386:x86-64)
  set(machine x64)
endif()

set(objects "")
foreach(source host bare_program)
  set(object "${CMAKE_CURRENT_BINARY_DIR}/msvc_${source}.obj")
  add_custom_command(OUTPUT "${object}"
    COMMAND "${Q_MUR_CLANG}" --target=${triple} -std=c++20 -nostdinc -O1 -fno-builtin -fno-exceptions -fno-rtti
      -Wall -Wextra -Werror "-I${PROJECT_SOURCE_DIR}/include" -DQ_MUR_HAS_STRUCT_RESULTS=${has_struct_results}
      -MMD -MF "${object}.d" -c "${CMAKE_CURRENT_SOURCE_DIR}/${source}.cpp" -o "${object}"
    DEPENDS "${source}.cpp" DEPFILE "${object}.d" VERBATIM)
  list(APPEND objects "${object}")
endforeach()

set(kernel32 "${CMAKE_CURRENT_BINARY_DIR}/kernel32.lib")
add_custom_command(OUTPUT "${kernel32}"
  COMMAND "${Q_MUR_LLVM_DLLTOOL}" -k -m ${dlltool_machine} -d "${CMAKE_CURRENT_SOURCE_DIR}/kernel32_${machine}.def"
    -l "${kernel32}"
  DEPENDS kernel32_${machine}.def VERBATIM)

set(program "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/link_msvc_host.exe")
add_custom_command(OUTPUT "${program}"
  COMMAND "${Q_MUR_LLD_LINK}" /nologo /machine:${machine} /subsystem:console /entry:bareProgram /nodefaultlib
    "/out:${program}" ${objects} "${Q_MUR_LIB}" "${kernel32}"
  DEPENDS ${objects} "${Q_MUR_LIB}" "${kernel32}" VERBATIM)
add_custom_target(link_msvc_host ALL DEPENDS "${program}")
add_dependencies(link_msvc_host q_Mur)
add_test(NAME link_msvc_host COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} "${program}")
