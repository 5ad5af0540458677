# Part of BuildPlugin.cmake: a project that `cmpihost new SCAFFOLD` wrote,
# built in build_dir as it was generated. Its build must stay a short first
# step for a new user; its own test must pass, and the installed cmpihost
# must serve it as the project's README says.
if(build_seconds GREATER 120)
  message(FATAL_ERROR "the generated project took ${build_seconds} s to build (at most 120)")
endif()

run_step("the generated project's test" ${run_env} "${build_dir}/${library}_test")
expect_in("${library}_test" "${step_output}" "[  PASSED  ] 2 tests.")

set(system [[SystemCreationClassName="TORSK_ComputerSystem",SystemName="host.example"]])
set(service "${SCAFFOLD}_DiagService.CreationClassName=\"${SCAFFOLD}_DiagService\",Name=\"SelfTest\",${system}")
set(device "ManagedElement=${SCAFFOLD}_Device.CreationClassName=\"${SCAFFOLD}_Device\",DeviceID=\"device0\",${system}")
run_step("cmpihost cm RunDiagnostic on the generated plug-in"
  ${run_env} "${PREFIX}/bin/cmpihost"
  --mof "${PREFIX}/share/diagcore/schema/diagcore.mof"
  --mof "${PLUGIN_SOURCE}/${library}.mof" --mof "${PLUGIN_SOURCE}/${library}-host.mof"
  --providers "${PLUGIN_SOURCE}/${library}.reg" --lib-dir "${build_dir}"
  cm "${service}" RunDiagnostic "${device}")
if(NOT step_output STREQUAL "ReturnValue = 0\n")
  message(FATAL_ERROR "cm RunDiagnostic on the generated plug-in printed:\n${step_output}")
endif()
