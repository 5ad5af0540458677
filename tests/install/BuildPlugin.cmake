# Builds a plug-in out of tree against the installed prefix PREFIX, by METHOD
# find_package or pkg_config, in WORK_DIR (emptied first); then loads it in
# the installed cmpihost and checks what it answers, and runs the plug-in's
# own test, which uses the installed host library. The plug-in is TinyDiag
# (PLUGIN_SOURCE), or, with SCAFFOLD=PREFIX, the project that the installed
# `cmpihost new SCAFFOLD` writes: a new user's first walk, whose build must
# take under two minutes. CXX is the compiler, FLAGS the sanitizer flags of
# the build (may be empty), LEAK_SUPPRESSIONS the LeakSanitizer file for the
# programs run. Where METHOD is pkg_config and pkg-config is missing, says so
# and stops: the test is then reported as skipped.
if(SCAFFOLD)
  set(PLUGIN_SOURCE "${WORK_DIR}/project")
endif()
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

set(library tinydiag)
if(SCAFFOLD)
  string(TOLOWER "${SCAFFOLD}diag" library)
  run_step("cmpihost new ${SCAFFOLD}" ${run_env} "${PREFIX}/bin/cmpihost" new ${SCAFFOLD}
    "${PLUGIN_SOURCE}")
endif()
string(TIMESTAMP build_start "%s" UTC)

if(METHOD STREQUAL "find_package")
  set(build_dir "${WORK_DIR}/build")
  run_step("configuring ${library} with find_package(diagcore)"
    ${CMAKE_COMMAND} -S "${PLUGIN_SOURCE}" -B "${build_dir}" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DCMAKE_CXX_COMPILER=${CXX}"
    "-DCMAKE_CXX_FLAGS=${FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${FLAGS}"
    "-DCMAKE_MODULE_LINKER_FLAGS=${FLAGS}")
  run_step("building ${library}" ${CMAKE_COMMAND} --build "${build_dir}" -j2)
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
if(NOT EXISTS "${build_dir}/lib${library}.so")
  message(FATAL_ERROR "the ${METHOD} build made no lib${library}.so in ${build_dir}")
endif()
string(TIMESTAMP build_end "%s" UTC)
math(EXPR build_seconds "${build_end} - ${build_start}")

if(SCAFFOLD)
  include("${CMAKE_CURRENT_LIST_DIR}/CheckScaffold.cmake")
else()
  include("${CMAKE_CURRENT_LIST_DIR}/CheckTinyDiag.cmake")
endif()
message(STATUS "${library} built with ${METHOD} in ${build_seconds} s, served by the installed "
               "cmpihost, its test passed")
