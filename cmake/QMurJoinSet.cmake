# Joins the objects of one instruction set into a single one, whose definitions end in the set's name:
#
#   cmake -DSET=<name> -DOBJECTS=<response file> -DEXPORTS=<file of names> -DOUTPUT=<object> [-DJUMPS=<file>]
#         -DLINK=<command> -DNM=<program> -DOBJCOPY=<program> -DWINDOWS=<is it> -DPREFIX=<of symbols>
#         -P cmake/QMurJoinSet.cmake
#
# With JUMPS it also writes what src/frame/jumps.cpp includes. docs/instruction-sets.md says why it is done like this.

cmake_minimum_required(VERSION 3.25)

set(joined "${OUTPUT}.joined")
set(ENV{LC_ALL} C) # symbols are listed in one order everywhere
set(renames "${OUTPUT}.renames")
set(kept "${OUTPUT}.kept")

# What several objects define alike, as templates and inline functions are, is chosen here, among objects of one set.
execute_process(COMMAND ${LINK} -r -nostdlib -Wl,--force-group-allocation -o "${joined}" "@${OBJECTS}"
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${NM}" --defined-only --format=sysv "${joined}"
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS "${EXPORTS}" exports)
string(LENGTH "${PREFIX}" prefix_length)

set(rename_lines "")
set(kept_text "")
set(jump_text "")
set(slots 0)
set(further 0)
string(REGEX MATCHALL "[^\n]+\\|[^\n]+" lines "${symbols}")
foreach(line IN LISTS lines)
  # name | value | class | type | size | line | section
  string(REGEX REPLACE " *\\| *" ";" fields "${line}")
  list(GET fields 0 name)
  # The table's head, and sections.
  if(name STREQUAL "Name" OR (name MATCHES "^\\." AND NOT name MATCHES "^\\.refptr\\."))
    continue()
  endif()
  list(APPEND rename_lines "${name} ${name}.${SET}\n")
  string(SUBSTRING "${name}" ${prefix_length} -1 plain_name)
  if(plain_name IN_LIST exports)
    string(APPEND kept_text "${name}.${SET}\n")
    list(GET fields 1 value)
    list(GET fields 6 section)
    string(MAKE_C_IDENTIFIER "first_at_${value}_${section}" place)
    if(DEFINED ${place})
      string(APPEND jump_text "Q_MUR_SAME(${further}, \"${plain_name}\", \"${${place}}\")\n")
      math(EXPR further "${further} + 1")
    else()
      set(${place} "${plain_name}")
      string(APPEND jump_text "Q_MUR_JUMP(${slots}, \"${plain_name}\")\n")
      math(EXPR slots "${slots} + 1")
    endif()
  endif()
endforeach()
if(slots EQUAL 0)
  message(FATAL_ERROR "the objects of ${SET} define nothing that is exported")
endif()

# Several objects may each have one of their own under the same name.
list(REMOVE_DUPLICATES rename_lines)
list(JOIN rename_lines "" rename_text)
file(WRITE "${renames}" "${rename_text}")
file(WRITE "${kept}" "${kept_text}")
if(WINDOWS)
  # What was chosen among several still says that it may be thrown away in favour of another, and would be. Besides the
  # chosen one there are references by name to those thrown away, so that all names have to stay visible. Those of the
  # unwinder are the compiler's, and no code's here.
  set(options --strip-symbol=___register_frame_info --strip-symbol=___deregister_frame_info)
  foreach(sections "text code,readonly" "rdata data,readonly" "data data" "pdata data,readonly" "xdata data,readonly"
      "eh_frame data,readonly")
    string(REPLACE " " ";" sections "${sections}")
    list(GET sections 0 name)
    list(GET sections 1 flags)
    list(APPEND options --set-section-flags ".${name}$*=alloc,load,contents,${flags}")
  endforeach()
  list(APPEND options --set-section-flags ".bss$*=alloc")
else()
  set(options "--keep-global-symbols=${kept}")
endif()
execute_process(COMMAND "${OBJCOPY}" "--redefine-syms=${renames}" ${options} "${joined}" "${OUTPUT}"
  COMMAND_ERROR_IS_FATAL ANY)
if(JUMPS)
  file(WRITE "${JUMPS}" "${jump_text}")
endif()
