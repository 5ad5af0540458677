# What `cmake --install` puts in place: the library and its headers, the CMPI
# headers it was built with, the embedded host (library, headers, command), the
# schema MOF, and the files that let a plug-in find all of it.
include(CMakePackageConfigHelpers)

set(DIAGCORE_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/diagcore)
set(DIAGCORE_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/diagcore)

# find_package(diagcore) promises diagcore::cmpihost and diagcore::cmpi, the
# names the build tree's aliases use, not the targets' own names.
set_target_properties(cmpihost_lib PROPERTIES EXPORT_NAME cmpihost)
set_target_properties(cmpi_headers PROPERTIES EXPORT_NAME cmpi)
# Installed programs find libcmpihost and libdiagcore beside them, wherever
# the tree is installed or moved to, without LD_LIBRARY_PATH.
if(TARGET cmpihost)
  set_target_properties(cmpihost PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endif()

install(TARGETS diagcore cmpihost_lib cmpihost_repository cmpi_headers
  EXPORT diagcoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET cmpihost)
  install(TARGETS cmpihost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/diagcore
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/host/include/cmpihost
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
# Plug-ins compile against the same CMPI headers the library was built with.
install(DIRECTORY ${DIAGCORE_CMPI_INCLUDE_DIR}/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cmpi FILES_MATCHING PATTERN "cmpi*.h")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/schema/
  DESTINATION ${DIAGCORE_INSTALL_DATADIR}/schema FILES_MATCHING PATTERN "*.mof")

install(EXPORT diagcoreTargets NAMESPACE diagcore:: DESTINATION ${DIAGCORE_INSTALL_CMAKEDIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/diagcoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/diagcoreConfig.cmake
  INSTALL_DESTINATION ${DIAGCORE_INSTALL_CMAKEDIR}
  PATH_VARS DIAGCORE_INSTALL_DATADIR CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/diagcoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/diagcoreConfig.cmake
              ${PROJECT_BINARY_DIR}/diagcoreConfigVersion.cmake
  DESTINATION ${DIAGCORE_INSTALL_CMAKEDIR})

file(RELATIVE_PATH DIAGCORE_PC_TO_PREFIX
  "${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/diagcore.pc.in ${PROJECT_BINARY_DIR}/diagcore.pc @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/cmake/cmpihost.pc.in ${PROJECT_BINARY_DIR}/cmpihost.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/diagcore.pc ${PROJECT_BINARY_DIR}/cmpihost.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The example plug-in: its library in a provider folder of its own (it finds
# libdiagcore one level up), and its MOF, deploy files and demo beside the
# schema, so that an administrator has everything the deploy README names.
if(TARGET filesystemdiag)
  set(DIAGCORE_FSD_DATADIR ${DIAGCORE_INSTALL_DATADIR}/examples/filesystem-diag)
  install(TARGETS filesystemdiag LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/diagcore)
  install(FILES ${PROJECT_SOURCE_DIR}/examples/filesystem-diag/mof/filesystemdiag.mof
    DESTINATION ${DIAGCORE_FSD_DATADIR}/mof)
  install(FILES
      ${PROJECT_SOURCE_DIR}/examples/filesystem-diag/deploy/filesystemdiag.reg
      ${PROJECT_SOURCE_DIR}/examples/filesystem-diag/deploy/filesystemdiag-registration.mof
      ${PROJECT_SOURCE_DIR}/examples/filesystem-diag/deploy/README.md
    DESTINATION ${DIAGCORE_FSD_DATADIR}/deploy)
  install(FILES
      ${PROJECT_SOURCE_DIR}/examples/filesystem-diag/demo.cmpihost.in
      ${PROJECT_SOURCE_DIR}/examples/filesystem-diag/README.md
    DESTINATION ${DIAGCORE_FSD_DATADIR})
  install(PROGRAMS ${PROJECT_SOURCE_DIR}/examples/filesystem-diag/demo.sh
    DESTINATION ${DIAGCORE_FSD_DATADIR})
endif()
