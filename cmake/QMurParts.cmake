# Parts that need more than a compiler: where that is lacking they are left out, and a line says so.

# Whether the checked library can be built here.
function(q_mur_find_whether_checked result)
  string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
  set(reason "")
  if(NOT CMAKE_SYSTEM_NAME MATCHES "^(Linux|Windows)$")
    set(reason "it is for Linux and Windows")
  elseif(NOT CMAKE_OBJCOPY)
    set(reason "objcopy was not found")
  elseif("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}}" MATCHES "-fsanitize" AND NOT Q_MUR_BUILD_FUZZ)
    set(reason "a sanitizer is on")
  elseif(CMAKE_INTERPROCEDURAL_OPTIMIZATION OR "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}}" MATCHES "-flto")
    set(reason "what is compiled at the link has no symbols yet")
  endif()
  if(reason)
    message(STATUS "Without the checked library: ${reason}")
  else()
    set(${result} ON PARENT_SCOPE)
  endif()
endfunction()

# Says which part is left out because what it needs was not found, the Debian packages that hold it, and the part's
# switch.
function(q_mur_leave_out part needs packages switch)
  message(STATUS "Without ${part}: ${needs} not found (packages: ${packages}; switch: ${switch})")
endfunction()
