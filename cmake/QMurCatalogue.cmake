# The catalogue as JSON, from which the packages for other languages are made.

set(Q_MUR_CATALOGUE "" CACHE FILEPATH "The catalogue's printer for this machine (empty: it is built)")

# Sets `result` to the path of a file that the build writes. Its printer is a program for the machine that builds, and is
# built for that where the build is for another one.
function(q_mur_print_catalogue result)
  set(json "${PROJECT_BINARY_DIR}/catalogue.json")
  set(${result} "${json}" PARENT_SCOPE)
  file(GLOB described CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/catalogue/*.*" "${PROJECT_SOURCE_DIR}/include/q_Mur/*.h")
  set(printer "${Q_MUR_CATALOGUE}")
  if(printer)
    list(APPEND described "${printer}")
  elseif(TARGET q_Mur_catalogue)
    set(printer $<TARGET_FILE:q_Mur_catalogue>)
    list(APPEND described q_Mur_catalogue)
  else()
    include(ExternalProject)
    set(tools "${PROJECT_BINARY_DIR}/printer")
    set(printer "${tools}/bin/q_Mur_catalogue")
    ExternalProject_Add(q_Mur_catalogue_printer
      SOURCE_DIR "${PROJECT_SOURCE_DIR}" BINARY_DIR "${tools}" PREFIX "${tools}-prefix"
      CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DQ_MUR_SETS=OFF -DQ_MUR_BUILD_TESTS=OFF -DQ_MUR_BUILD_EXAMPLES=OFF
        -DQ_MUR_BUILD_CHECKED=OFF -DQ_MUR_BUILD_C=OFF -DQ_MUR_BUILD_PYTHON=OFF -DQ_MUR_TEXT=OFF
        -DQ_MUR_BUILD_CATALOGUE=ON -DQ_MUR_WERROR=${Q_MUR_WERROR}
      BUILD_COMMAND "${CMAKE_COMMAND}" --build <BINARY_DIR> --target q_Mur_catalogue
      INSTALL_COMMAND "" BUILD_ALWAYS ON BUILD_BYPRODUCTS "${printer}" USES_TERMINAL_BUILD ON)
    list(APPEND described q_Mur_catalogue_printer)
  endif()
  add_custom_command(OUTPUT "${json}"
    COMMAND "${printer}" --json --headers "${PROJECT_SOURCE_DIR}/include/q_Mur" > "${json}"
    DEPENDS ${described} VERBATIM)
  # So that targets of several directories wait for one run.
  add_custom_target(q_Mur_catalogue_json DEPENDS "${json}")
endfunction()

# Whether the printer can be built here, and what writes sources of what it prints; without them the reason.
function(q_mur_find_reason_against_catalogue result)
  find_package(Python3 3.9 QUIET COMPONENTS Interpreter)
  # Of the machine that builds, also where the build is for another one.
  find_path(Q_MUR_JSON_DIR nlohmann/json.hpp PATHS /usr/local/include /usr/include NO_CMAKE_FIND_ROOT_PATH)
  find_path(Q_MUR_CLI_DIR CLI/CLI.hpp PATHS /usr/local/include /usr/include NO_CMAKE_FIND_ROOT_PATH)
  mark_as_advanced(Q_MUR_JSON_DIR Q_MUR_CLI_DIR)
  set(${result} "" PARENT_SCOPE)
  if(NOT Python3_FOUND OR (NOT Q_MUR_CATALOGUE AND (NOT Q_MUR_JSON_DIR OR NOT Q_MUR_CLI_DIR)))
    set(${result} "Python, nlohmann/json or CLI11" PARENT_SCOPE)
  endif()
endfunction()

# Which Python the package is for: the system's, unless Q_MUR_PYTHON names one. Sets Q_MUR_PYTHON_INCLUDES, or the reason
# why there is no package.
function(q_mur_find_python result)
  find_program(Q_MUR_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
  find_program(Q_MUR_PYTHON python3)
  mark_as_advanced(Q_MUR_PYTHON)
  set(${result} "" PARENT_SCOPE)
  set(includes "")
  set(version 0)
  if(Q_MUR_PYTHON)
    execute_process(COMMAND "${Q_MUR_PYTHON}" -c
      "import sys, sysconfig, build, setuptools, wheel; print(sysconfig.get_path('include'), '%d.%d' % sys.version_info[:2], sep=';')"
      OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(answer)
      list(GET answer 0 includes)
      list(GET answer 1 version)
    endif()
  endif()
  if(NOT TARGET q_Mur_checked_static)
    set(${result} "it holds the checked library, which is not built" PARENT_SCOPE)
  elseif(CMAKE_CROSSCOMPILING)
    set(${result} "the build is for another machine" PARENT_SCOPE)
  elseif(version VERSION_LESS 3.11 OR NOT EXISTS "${includes}/Python.h")
    set(${result} "no Python 3.11 with headers and build (packages: python3-dev python3-build python3-setuptools python3-wheel)" PARENT_SCOPE)
  endif()
  set(Q_MUR_PYTHON_INCLUDES "${includes}" PARENT_SCOPE)
endfunction()
