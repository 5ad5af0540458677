# Part of BuildPlugin.cmake: what the installed cmpihost and TinyDiag's own
# test answer for TinyDiag, built in build_dir.
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
