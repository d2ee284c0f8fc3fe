# Installation: the library, its header, the catalogs (see catalog/), the
# tool, a pkg-config file and a CMake package for find_package(qx25).
include(CMakePackageConfigHelpers)

set_target_properties(qx25_tool PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

install(TARGETS qx25 EXPORT qx25Targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/head/qx25.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The network profiles the system is delivered with, in the library data
# directory, where the library looks for them.
install(FILES ${PROJECT_SOURCE_DIR}/examples/lib/world_networks.profile
  DESTINATION ${QX25_INSTALL_DATADIR})

install(EXPORT qx25Targets NAMESPACE qx25::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qx25)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qx25Config.cmake.in
  ${PROJECT_BINARY_DIR}/qx25Config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qx25)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qx25ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qx25Config.cmake ${PROJECT_BINARY_DIR}/qx25ConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qx25)

# The .pc file finds the prefix from its own place, so an installation can
# be moved (tests install into a scratch prefix).
file(RELATIVE_PATH QX25_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
# A client built with $(pkg-config --libs qx25) finds the library where it
# was installed, also under a prefix the dynamic loader does not search: the
# link line carries the library directory as the client's run path. Not for
# a directory the loader searches anyway.
set(QX25_PC_RPATH "-Wl,-rpath,\${libdir} ")
if("${CMAKE_INSTALL_FULL_LIBDIR}" IN_LIST CMAKE_C_IMPLICIT_LINK_DIRECTORIES)
  set(QX25_PC_RPATH "")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/qx25.pc.in ${PROJECT_BINARY_DIR}/qx25.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qx25.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
