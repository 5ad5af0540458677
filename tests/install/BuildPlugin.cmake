# Builds TinyDiag (PLUGIN_SOURCE) out of tree against the installed prefix
# PREFIX, by METHOD find_package or pkg_config, in WORK_DIR (emptied first);
# then loads the plug-in in the installed cmpihost and checks what it
# answers, and runs TinyDiag's own test, which uses the installed host
# library. CXX is the compiler, FLAGS the sanitizer flags of the build (may
# be empty), LEAK_SUPPRESSIONS the LeakSanitizer file for the programs run.
# Where METHOD is pkg_config and pkg-config is missing, says so and stops:
# the test is then reported as skipped.
foreach(var METHOD PREFIX LIBDIR PLUGIN_SOURCE WORK_DIR CXX LEAK_SUPPRESSIONS)
  if(NOT ${var})
    message(FATAL_ERROR "BuildPlugin.cmake needs -D${var}=...")
  endif()
endforeach()

# Runs a command; fails the test with its output unless it exits 0.
function(run_step what)
  execute_process(COMMAND ${ARGN}
    WORKING_DIRECTORY "${WORK_DIR}"
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} failed (${result}):\n${ARGN}\n${output}\n${errors}")
  endif()
  set(step_output "${output}" PARENT_SCOPE)
endfunction()

# Fails the test unless `text` holds each of the literal `expected` texts.
function(expect_in what text)
  foreach(expected IN LISTS ARGN)
    string(FIND "${text}" "${expected}" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "${what}: expected\n  ${expected}\nin:\n${text}")
    endif()
  endforeach()
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
# The leak suppressions apply to the programs run below, not to the tools.
set(run_env ${CMAKE_COMMAND} -E env
  "LSAN_OPTIONS=suppressions=${LEAK_SUPPRESSIONS}:print_suppressions=0")

if(METHOD STREQUAL "find_package")
  set(build_dir "${WORK_DIR}/build")
  run_step("configuring TinyDiag with find_package(diagcore)"
    ${CMAKE_COMMAND} -S "${PLUGIN_SOURCE}" -B "${build_dir}" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DCMAKE_CXX_COMPILER=${CXX}"
    "-DCMAKE_CXX_FLAGS=${FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${FLAGS}"
    "-DCMAKE_MODULE_LINKER_FLAGS=${FLAGS}")
  run_step("building TinyDiag" ${CMAKE_COMMAND} --build "${build_dir}" -j2)
elseif(METHOD STREQUAL "pkg_config")
  find_program(PKG_CONFIG pkg-config)
  find_program(MAKE NAMES make gmake)
  if(NOT PKG_CONFIG OR NOT MAKE)
    message("TinyDiag test skipped: pkg-config or make is not installed")
    return()
  endif()
  set(build_dir "${WORK_DIR}")
  run_step("building TinyDiag with pkg-config"
    ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${PREFIX}/${LIBDIR}/pkgconfig"
    ${MAKE} -f "${PLUGIN_SOURCE}/Makefile" "CXX=${CXX}" "CXXFLAGS=-O1 -g ${FLAGS}"
    "LDFLAGS=${FLAGS}")
else()
  message(FATAL_ERROR "unknown METHOD ${METHOD}")
endif()
if(NOT EXISTS "${build_dir}/libtinydiag.so")
  message(FATAL_ERROR "the ${METHOD} build made no libtinydiag.so in ${build_dir}")
endif()

# The plug-in in the installed cmpihost, as its registration file deploys it.
set(cmpihost ${run_env} "${PREFIX}/bin/cmpihost"
  --mof "${PREFIX}/share/diagcore/schema/diagcore.mof"
  --mof "${PLUGIN_SOURCE}/tinydiag.mof"
  --providers "${PLUGIN_SOURCE}/tinydiag.reg"
  --lib-dir "${build_dir}")
set(system [[SystemCreationClassName="TORSK_ComputerSystem",SystemName="tinyhost.example"]])
set(service "TINY_DiagService.Name=\"PathExists\",${system},CreationClassName=\"TINY_DiagService\"")
set(root "ManagedElement=TINY_Path.${system},CreationClassName=\"TINY_Path\",DeviceID=\"/\"")

run_step("cmpihost ei TINY_DiagService" ${cmpihost} ei TINY_DiagService)
expect_in("ei TINY_DiagService" "${step_output}"
  "// //localhost/root/cimv2:${service}\n"
  "instance of TINY_DiagService {\n"
  "    Name = \"PathExists\";\n"
  "    SystemName = \"tinyhost.example\";\n")

run_step("cmpihost cm RunDiagnostic" ${cmpihost} cm "${service}" RunDiagnostic "${root}")
if(NOT step_output STREQUAL "ReturnValue = 0\n")
  message(FATAL_ERROR "cm RunDiagnostic on / printed:\n${step_output}")
endif()

# One process for the runs and the enumeration of their records.
run_step("cmpihost run tinydiag.cmpihost" ${cmpihost} run "${PLUGIN_SOURCE}/tinydiag.cmpihost")
expect_in("run tinydiag.cmpihost" "${step_output}"
  "ReturnValue = 0\nReturnValue = 1\n"
  "instance of TINY_DiagRecord {\n"
  "    RecordData = \"Test Passed\";\n"
  "    ManagedElementName = \"/\";\n"
  "    RecordData = \"No such path: /no/such/path\";\n"
  "    ErrorCode = {\"ENOENT\"};\n")

# TinyDiag's own test: the installed host library, in-process.
run_step("tinydiag_test" ${run_env} "${build_dir}/tinydiag_test")
expect_in("tinydiag_test" "${step_output}" "[  PASSED  ]")
message(STATUS "TinyDiag built with ${METHOD}, served by the installed cmpihost, its test passed")
