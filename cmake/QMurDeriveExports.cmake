# Derives from exports/q_Mur.exports what a linker wants, with nothing but CMake:
#
#   cmake -DFORM=<form> -DSCHEME=<scheme> -DOUTPUT=<file> -P cmake/QMurDeriveExports.cmake
#
#   def      with msvc32 or msvc64: module definition for linking the DLL -DLIBRARY=<name> with MinGW, both decorations
#            of each name and those of -DFURTHER=<name,...>
#   lib-def  with msvc32 or msvc64: module definition for q_Mur.lib, the decoration of MSVC alone
#   map      with long32 or lp64: version script for a shared object; shows -DFURTHER=<name,...>, too
#   names    with any scheme: the names, one a line
#   imports  with long32 or lp64 and -DPREFIX=<of symbols>: sources for linking what is compiled for the DLL's hosts with
#            the static library: the pointers by which they call
#   renames  with long32 or lp64 and -DPREFIX=<of symbols>: what gives each function a further `.unchecked` in its name
#   checked  likewise: for each function Q_MUR_CHECKED(symbol, result, name, (types), (parameters), (arguments)), its
#            symbol being the one that `renames` gives it
#   calls    likewise, as Q_MUR_CALL with the function's own symbol
#   wraps    with long32 or lp64: options by which GNU's linkers lead calls of each function to `__wrap_` and its symbol
#
# tools/exports explains the schemes.

string(REPLACE "," ";" FURTHER "${FURTHER}")
if(FORM STREQUAL map)
  set(text "{\n    global:\n")
  foreach(name IN LISTS FURTHER)
    string(APPEND text "        ${name};\n")
  endforeach()
elseif(FORM MATCHES "^(names|imports|renames|checked|calls|wraps)$")
  set(text "")
else()
  if(NOT LIBRARY)
    set(LIBRARY q_Mur)
  endif()
  set(text "LIBRARY ${LIBRARY}.dll\nEXPORTS\n")
  foreach(name IN LISTS FURTHER)
    string(APPEND text "    ${name}\n")
  endforeach()
endif()
set(entries 0)
file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/../exports/q_Mur.exports" lines REGEX "^[^#]")
foreach(line IN LISTS lines)
  if(line MATCHES "^([^ ].*[ *&])([A-Za-z_0-9]+)\\((.*)\\)$")
    set(data "")
    string(STRIP "${CMAKE_MATCH_1}" result)
    set(function "${CMAKE_MATCH_2}")
    set(types "${CMAKE_MATCH_3}")
  elseif(line MATCHES "^[^ ]")
    set(data " DATA")
  elseif(line MATCHES "^ +([a-z0-9]+) +([^ ]+)$")
    set(decorated_${CMAKE_MATCH_1} "${CMAKE_MATCH_2}")
    if(CMAKE_MATCH_1 STREQUAL lp64) # the last line of an entry
      set(name "${decorated_${SCHEME}}")
      if(FORM STREQUAL map)
        string(APPEND text "        ${name};\n")
      elseif(FORM STREQUAL names)
        string(APPEND text "${name}\n")
      elseif(FORM STREQUAL imports)
        string(APPEND text "extern \"C\" {\nextern char export${entries} __asm__(\"${PREFIX}${name}\");\n"
          "extern void *const import${entries} __asm__(\"__imp_${PREFIX}${name}\");\n"
          "void *const import${entries} = &export${entries};\n}\n")
      elseif(FORM STREQUAL renames)
        if(NOT data)
          string(APPEND text "${PREFIX}${name} ${PREFIX}${name}.unchecked\n")
          # On Windows, where what lies in a DLL or may lie there is referred to by places of further names.
          foreach(place __imp_ .refptr.)
            string(APPEND text "${place}${PREFIX}${name} ${place}${PREFIX}${name}.unchecked\n")
          endforeach()
        endif()
      elseif(FORM STREQUAL wraps)
        if(NOT data)
          string(APPEND text "--wrap=${name}\n")
        endif()
      elseif(FORM MATCHES "^(checked|calls)$")
        if(NOT data)
          string(REPLACE ", " ";" type_list "${types}")
          set(parameters "")
          set(passed "")
          foreach(type IN LISTS type_list)
            list(LENGTH passed number)
            list(APPEND parameters "${type} a${number}")
            list(APPEND passed "a${number}")
          endforeach()
          list(JOIN parameters ", " parameters)
          list(JOIN passed ", " passed)
          set(call "${result}, ${function}, (${types}), (${parameters}), (${passed}))")
          if(FORM STREQUAL checked)
            string(APPEND text "Q_MUR_CHECKED(\"${PREFIX}${name}.unchecked\", ${call}\n")
          else()
            string(APPEND text "Q_MUR_CALL(\"${name}\", ${call}\n")
          endif()
        endif()
      elseif(FORM STREQUAL def)
        string(APPEND text "    \"${name}\" = ${decorated_long32}${data}\n    ${decorated_long32}${data}\n")
      else()
        string(APPEND text "    ${name}${data}\n")
      endif()
      math(EXPR entries "${entries} + 1")
    endif()
  endif()
endforeach()
if(FORM STREQUAL map)
  string(APPEND text "    local:\n        *;\n};\n")
endif()
if(entries EQUAL 0)
  message(FATAL_ERROR "exports/q_Mur.exports has no entries")
endif()
file(WRITE "${OUTPUT}" "${text}")
