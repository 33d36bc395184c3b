# What is installed: the headers, both libraries, the import libraries, and the packages for CMake and pkg-config.

include(CMakePackageConfigHelpers)

set(Q_MUR_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/q_Mur")
set(Q_MUR_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS q_Mur q_Mur_static EXPORT q_MurTargets
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT library
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/include/q_Mur.h" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/q_Mur" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT library)
if(WIN32)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/q_Mur.def" ${Q_MUR_LIB} DESTINATION "${CMAKE_INSTALL_LIBDIR}")
endif()

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/q_MurConfig.cmake.in" q_MurConfig.cmake
  INSTALL_DESTINATION "${Q_MUR_CMAKE_DIR}" PATH_VARS CMAKE_INSTALL_LIBDIR NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(q_MurConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(EXPORT q_MurTargets NAMESPACE q_Mur:: DESTINATION "${Q_MUR_CMAKE_DIR}")
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/q_MurConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/q_MurConfigVersion.cmake"
  DESTINATION "${Q_MUR_CMAKE_DIR}")

# The .pc file finds its prefix from where it stands, so that the tree may be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(Q_MUR_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH up "/prefix/${Q_MUR_PKGCONFIG_DIR}" "/prefix")
  string(REGEX REPLACE "/$" "" Q_MUR_PC_PREFIX "\${pcfiledir}/${up}")
endif()
# An absolute directory takes the place of the prefix.
cmake_path(APPEND Q_MUR_PC_LIBDIR "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND Q_MUR_PC_INCLUDEDIR "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/q_Mur.pc.in" q_Mur.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/q_Mur.pc" DESTINATION "${Q_MUR_PKGCONFIG_DIR}")
foreach(variable Q_MUR_PKGCONFIG_DIR Q_MUR_PC_PREFIX Q_MUR_PC_LIBDIR Q_MUR_PC_INCLUDEDIR)
  set(${variable} "${${variable}}" PARENT_SCOPE) # for what is packed beside the library
endforeach()
