# What the shared library shows, and under which names: exactly the list in exports/q_Mur.exports.

set(Q_MUR_EXPORT_SCRIPT "${PROJECT_SOURCE_DIR}/cmake/QMurDeriveExports.cmake")
set(Q_MUR_EXPORT_LIST "${PROJECT_SOURCE_DIR}/exports/q_Mur.exports")

# The schemes by which names are decorated for this target; tools/exports explains them.
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(Q_MUR_MSVC_SCHEME msvc32)
elseif(WIN32)
  set(Q_MUR_MSVC_SCHEME msvc64)
endif()
if(WIN32 OR CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(Q_MUR_ITANIUM_SCHEME long32)
else()
  set(Q_MUR_ITANIUM_SCHEME lp64)
endif()

# What the compiler puts before the names of symbols.
set(Q_MUR_SYMBOL_PREFIX "")
if(Q_MUR_MSVC_SCHEME STREQUAL "msvc32")
  set(Q_MUR_SYMBOL_PREFIX _)
endif()

# Derives the file `output` from the list. What stands behind the scheme are options of the script.
function(q_mur_derive_from_export_list output form scheme)
  add_custom_command(OUTPUT "${output}"
    COMMAND "${CMAKE_COMMAND}" -DFORM=${form} -DSCHEME=${scheme} -DPREFIX=${Q_MUR_SYMBOL_PREFIX} "-DOUTPUT=${output}"
      ${ARGN} -P "${Q_MUR_EXPORT_SCRIPT}"
    DEPENDS "${Q_MUR_EXPORT_SCRIPT}" "${Q_MUR_EXPORT_LIST}" VERBATIM)
endfunction()

# Makes a shared library show the list and nothing else; a name in the list that is not defined fails the link. On
# Windows every name stands under both decorations, and q_Mur.lib, the import library in the manner of MSVC, is built
# beside the one that MinGW's linker writes; the variable Q_MUR_LIB holds its path. A library that is not q_Mur itself
# shows further names, too, and stands in the place of q_Mur for what was linked with q_Mur.lib.
function(q_mur_export target)
  list(JOIN ARGN "," further)
  if(WIN32)
    set(definition "${CMAKE_CURRENT_BINARY_DIR}/${target}.def")
    q_mur_derive_from_export_list("${definition}" def ${Q_MUR_MSVC_SCHEME} -DLIBRARY=${target} -DFURTHER=${further})
    target_sources(${target} PRIVATE "${definition}")
    if(target STREQUAL q_Mur)
      q_mur_add_msvc_import_library()
    endif()
  else()
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.map")
    q_mur_derive_from_export_list("${script}" map ${Q_MUR_ITANIUM_SCHEME} -DFURTHER=${further})
    target_sources(${target} PRIVATE "${script}")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" "LINKER:--no-undefined-version")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
  endif()
endfunction()

# Finds a program of LLVM under its plain name or one with a version.
function(q_mur_find_llvm_program variable name)
  set(names 22 21 20 19 18 17 16 15 14)
  list(TRANSFORM names PREPEND ${name}-)
  find_program(${variable} NAMES ${name} ${names})
  mark_as_advanced(${variable})
endfunction()

function(q_mur_add_msvc_import_library)
  q_mur_find_llvm_program(Q_MUR_LLVM_DLLTOOL llvm-dlltool)
  q_mur_find_llvm_program(Q_MUR_LLD_LINK lld-link)
  set(Q_MUR_LIB "" CACHE INTERNAL "")
  set(definition "${CMAKE_CURRENT_BINARY_DIR}/q_Mur.lib.def")
  set(library "${CMAKE_CURRENT_BINARY_DIR}/q_Mur.lib")
  if(Q_MUR_MSVC_SCHEME STREQUAL msvc32)
    set(dlltool_machine i386)
    set(machine x86)
  else()
    set(dlltool_machine i386:x86-64)
    set(machine x64)
  endif()
  if(Q_MUR_LLVM_DLLTOOL)
    set(command "${Q_MUR_LLVM_DLLTOOL}" -m ${dlltool_machine} -D q_Mur.dll -d "${definition}" -l "${library}")
  elseif(Q_MUR_LLD_LINK)
    # Without anything to link it writes the import library alone.
    set(command "${Q_MUR_LLD_LINK}" /machine:${machine} "/def:${definition}" "/out:${library}")
  else()
    message(STATUS "q_Mur.lib will not be built: neither llvm-dlltool nor lld-link was found")
    return()
  endif()

  q_mur_derive_from_export_list("${definition}" lib-def ${Q_MUR_MSVC_SCHEME})
  add_custom_command(OUTPUT "${library}" COMMAND ${command} DEPENDS "${definition}" VERBATIM)
  add_custom_target(q_Mur_msvc_import_library ALL DEPENDS "${library}")
  set(Q_MUR_LIB "${library}" CACHE INTERNAL "The import library in the manner of MSVC; empty where it is not built")
endfunction()
