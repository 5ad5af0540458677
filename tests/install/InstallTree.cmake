# Installs the build tree BUILD_DIR into the scratch prefix PREFIX (emptied
# first) and checks that what a plug-in author needs is there and that the
# installed cmpihost runs with no help from LD_LIBRARY_PATH. LIBDIR is the
# build's CMAKE_INSTALL_LIBDIR; EXAMPLES is 1 when the example plug-in was
# built (its deploy files are then installed too, and it is loaded from
# them); LEAK_SUPPRESSIONS is the LeakSanitizer file for the programs run.
foreach(var BUILD_DIR PREFIX LIBDIR LEAK_SUPPRESSIONS)
  if(NOT ${var})
    message(FATAL_ERROR "InstallTree.cmake needs -D${var}=...")
  endif()
endforeach()

file(REMOVE_RECURSE "${PREFIX}")
execute_process(
  COMMAND ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}"
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "cmake --install ${BUILD_DIR} --prefix ${PREFIX} failed (${result}):\n${output}")
endif()

set(expected
  bin/cmpihost
  ${LIBDIR}/libdiagcore.so
  ${LIBDIR}/libcmpihost.so
  ${LIBDIR}/cmake/diagcore/diagcoreConfig.cmake
  ${LIBDIR}/cmake/diagcore/diagcoreConfigVersion.cmake
  ${LIBDIR}/pkgconfig/diagcore.pc
  ${LIBDIR}/pkgconfig/cmpihost.pc
  include/diagcore/diagcore.h
  include/diagcore/DiagProvider.h
  include/cmpi/cmpidt.h
  include/cmpi/cmpift.h
  include/cmpi/cmpimacs.h
  include/cmpihost/Host.h
  include/cmpihost/MofReader.h
  share/diagcore/schema/diagcore.mof
  share/diagcore/schema/qualifiers.mof)
if(EXAMPLES)
  list(APPEND expected
    ${LIBDIR}/diagcore/libfilesystemdiag.so
    share/diagcore/examples/filesystem-diag/mof/filesystemdiag.mof
    share/diagcore/examples/filesystem-diag/deploy/filesystemdiag.reg
    share/diagcore/examples/filesystem-diag/deploy/filesystemdiag-registration.mof
    share/diagcore/examples/filesystem-diag/deploy/README.md)
endif()
set(missing "")
foreach(file IN LISTS expected)
  if(NOT EXISTS "${PREFIX}/${file}")
    string(APPEND missing "  ${file}\n")
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "cmake --install left out:\n${missing}")
endif()

# The installed program finds its libraries through its own RUNPATH.
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH "${PREFIX}/bin/cmpihost" --version
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0 OR NOT output MATCHES "^cmpihost [0-9]+\\.[0-9]+\\.[0-9]+\n$")
  message(FATAL_ERROR "the installed cmpihost does not run on its own (${result}):\n${output}")
endif()

# The installed example, from its installed deploy files, in the installed
# host: its library finds libdiagcore through its own RUNPATH.
if(EXAMPLES)
  set(example "${PREFIX}/share/diagcore/examples/filesystem-diag")
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH
            "LSAN_OPTIONS=suppressions=${LEAK_SUPPRESSIONS}:print_suppressions=0"
            "${PREFIX}/bin/cmpihost" --mof "${PREFIX}/share/diagcore/schema/diagcore.mof"
            --mof "${example}/mof/filesystemdiag.mof"
            --providers "${example}/deploy/filesystemdiag.reg"
            --lib-dir "${PREFIX}/${LIBDIR}/diagcore"
            ein FSD_FileSystemDiagnosticService
    RESULT_VARIABLE result OUTPUT_VARIABLE services ERROR_VARIABLE errors)
  if(NOT result EQUAL 0 OR NOT services MATCHES "Name=\"FreeSpaceCheck\""
     OR NOT services MATCHES "Name=\"WriteReadCheck\"")
    message(FATAL_ERROR
      "the installed example does not serve its services (${result}):\n${services}\n${errors}")
  endif()
endif()
message(STATUS "installed into ${PREFIX}; ${output}")
