# The instruction sets for which the library's functions are compiled, besides the floor. docs/instruction-sets.md says
# how one library file holds them all.
#
# Sets Q_MUR_SETS_HELD, the sets above the floor, empty where there is none; q_mur_flags_<set>, what they are compiled
# with.

set(Q_MUR_SETS_HELD "")
# The levels of x86-64 psABI; compilers know them by name for 64 bits alone.
set(q_mur_flags_v3 -mavx2 -mbmi -mbmi2 -mf16c -mfma -mlzcnt -mmovbe -mpopcnt)
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  # The stack is aligned to 16 bytes and GCC aligns nothing on it further, but would move wider vectors as if it did.
  list(APPEND q_mur_flags_v3 -Wa,-muse-unaligned-vector-move)
endif()
set(q_mur_flags_v4 ${q_mur_flags_v3} -mavx512f -mavx512bw -mavx512cd -mavx512dq -mavx512vl)

# Whether compiler, assembler and linker make joined objects.
function(q_mur_find_whether_objects_join)
  if(DEFINED Q_MUR_OBJECTS_JOIN)
    return()
  endif()
  set(probe "${PROJECT_BINARY_DIR}/CMakeFiles/q_mur_join_probe")
  file(WRITE "${probe}.cpp" "inline int twice(int x) { return x + x; }\nint (*function)(int) = twice;\n")
  separate_arguments(flags NATIVE_COMMAND "${CMAKE_CXX_FLAGS}")
  set(compiler "${CMAKE_CXX_COMPILER}" ${CMAKE_CXX_COMPILER_ARG1} ${flags})
  execute_process(COMMAND ${compiler} ${q_mur_flags_v4} -fno-gnu-unique -c "${probe}.cpp" -o "${probe}.o"
    RESULT_VARIABLE compiled OUTPUT_QUIET ERROR_QUIET)
  execute_process(COMMAND ${compiler} -r -nostdlib -Wl,--force-group-allocation "${probe}.o" -o "${probe}_joined.o"
    RESULT_VARIABLE joined OUTPUT_QUIET ERROR_QUIET)
  if(compiled EQUAL 0 AND joined EQUAL 0)
    set(Q_MUR_OBJECTS_JOIN ON CACHE INTERNAL "")
  else()
    set(Q_MUR_OBJECTS_JOIN OFF CACHE INTERNAL "")
  endif()
endfunction()

# Why there is the floor alone; empty where the others can be had.
function(q_mur_reason_for_one_set result)
  set(${result} "" PARENT_SCOPE)
  string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
  if(NOT Q_MUR_SETS)
    set(${result} "Q_MUR_SETS is off" PARENT_SCOPE)
  elseif(Q_MUR_INSTRUCTION_SET)
    set(${result} "Q_MUR_INSTRUCTION_SET names it" PARENT_SCOPE)
  elseif(NOT CMAKE_SYSTEM_PROCESSOR MATCHES "86|AMD64|amd64")
    set(${result} "the processor is no x86" PARENT_SCOPE)
  elseif(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(${result} "the compiler is not GCC" PARENT_SCOPE)
  elseif("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}}" MATCHES "-fsanitize")
    set(${result} "a sanitizer is on" PARENT_SCOPE)
  elseif(CMAKE_CONFIGURATION_TYPES)
    set(${result} "the generator builds several configurations" PARENT_SCOPE)
  else()
    q_mur_find_whether_objects_join()
    if(APPLE OR NOT CMAKE_NM OR NOT CMAKE_OBJCOPY OR NOT Q_MUR_OBJECTS_JOIN)
      set(${result} "objects cannot be joined here" PARENT_SCOPE)
    endif()
  endif()
endfunction()

q_mur_reason_for_one_set(q_mur_reason)
if(q_mur_reason)
  message(STATUS "One instruction set only: ${q_mur_reason}")
else()
  set(Q_MUR_SETS_HELD v3 v4)
endif()

# Compiles the sources of the target `lowest`, which are its floor, for each further set, and joins the objects of each into
# one. The variable `result` receives the joined objects, `jumps` the file that says what the exported names jump to.
function(q_mur_join_sets lowest result jumps)
  get_target_property(sources ${lowest} SOURCES)
  set(names "${CMAKE_CURRENT_BINARY_DIR}/q_Mur_exports.txt")
  q_mur_derive_from_export_list("${names}" names ${Q_MUR_ITANIUM_SCHEME})
  add_custom_target(q_Mur_exported_names DEPENDS "${names}")
  set(written_jumps "${CMAKE_CURRENT_BINARY_DIR}/q_Mur_jumps.inc")
  separate_arguments(link NATIVE_COMMAND "${CMAKE_CXX_FLAGS}")
  list(PREPEND link "${CMAKE_CXX_COMPILER}" ${CMAKE_CXX_COMPILER_ARG1})

  set(joined "")
  foreach(set sse2 ${Q_MUR_SETS_HELD})
    set(objects ${lowest})
    set(arguments "")
    set(byproducts "")
    if(set STREQUAL "sse2")
      set(arguments "-DJUMPS=${written_jumps}")
      set(byproducts "${written_jumps}")
    else()
      set(objects ${lowest}_${set})
      add_library(${objects} OBJECT ${sources})
      q_mur_compile_as_library(${objects})
      target_compile_options(${objects} PRIVATE ${q_mur_flags_${set}})
    endif()
    # Unique symbols could be neither renamed nor hidden, and what is compiled at the link has no set.
    target_compile_options(${objects} PRIVATE -fno-gnu-unique -fno-lto)
    set(output "${CMAKE_CURRENT_BINARY_DIR}/q_Mur_${set}${CMAKE_CXX_OUTPUT_EXTENSION}")
    set(list "${CMAKE_CURRENT_BINARY_DIR}/q_Mur_${set}_objects.txt")
    file(GENERATE OUTPUT "${list}" CONTENT "\"$<JOIN:$<TARGET_OBJECTS:${objects}>,\"\n\">\"\n" TARGET ${objects})
    add_custom_command(OUTPUT "${output}" ${byproducts}
      COMMAND "${CMAKE_COMMAND}" -DSET=${set} "-DOBJECTS=${list}" "-DEXPORTS=${names}" "-DOUTPUT=${output}" ${arguments}
        "-DLINK=${link}" "-DNM=${CMAKE_NM}" "-DOBJCOPY=${CMAKE_OBJCOPY}" -DWINDOWS=$<BOOL:${WIN32}> -DPREFIX=${Q_MUR_SYMBOL_PREFIX}
        -P "${PROJECT_SOURCE_DIR}/cmake/QMurJoinSet.cmake"
      DEPENDS $<TARGET_OBJECTS:${objects}> "${list}" "${names}" "${PROJECT_SOURCE_DIR}/cmake/QMurJoinSet.cmake"
      COMMENT "Joining the objects of the set ${set}" VERBATIM)
    # Several libraries take the object, and it is to be made once.
    add_custom_target(q_Mur_joined_${set} DEPENDS "${output}" ${byproducts})
    add_dependencies(q_Mur_joined_${set} ${objects} q_Mur_exported_names)
    list(APPEND joined "${output}")
  endforeach()
  set_source_files_properties(${joined} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
  set(${result} ${joined} PARENT_SCOPE)
  set(${jumps} "${written_jumps}" PARENT_SCOPE)
endfunction()
