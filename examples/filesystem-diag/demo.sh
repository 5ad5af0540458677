#!/bin/sh
# Runs the file-system diagnostic's demo in cmpihost.
#
#   sh demo.sh CMPIHOST LIBDIR SCHEMA_MOF
#
# CMPIHOST is the cmpihost command, LIBDIR the folder of libfilesystemdiag.so,
# SCHEMA_MOF the project's DMTF schema (schema/diagcore.mof). Fills in
# demo.cmpihost.in (this host's name, a block per mounted file system) and
# runs it with the example's MOF and its deploy/filesystemdiag.reg, the same
# registration file a CIMOM reads. Works as root or not: the write check
# writes only where the provider may, a 4 KiB file that it removes again.
set -eu

if [ "$#" -ne 3 ]; then
  echo "usage: sh demo.sh CMPIHOST LIBDIR SCHEMA_MOF" >&2
  exit 2
fi
cmpihost=$1
here=$(cd "$(dirname "$0")" && pwd)
set -- --mof "$3" --mof "$here/mof/filesystemdiag.mof" \
       --lib-dir "$2" --providers "$here/deploy/filesystemdiag.reg"

scratch=$(mktemp -d "${TMPDIR:-/tmp}/fsd-demo.XXXXXX")
trap 'rm -rf "$scratch"' EXIT INT TERM

# What the provider itself serves: the system's name and the file systems.
"$cmpihost" "$@" ein TORSK_ComputerSystem >"$scratch/system"
"$cmpihost" "$@" ein FSD_MountedFileSystem >"$scratch/file-systems"
# The key Name itself, not CreationClassName, wherever it stands in the path.
system=$(sed -n 's/.*[.,]Name="\([^"]*\)".*/\1/p' "$scratch/system" | head -n 1)

awk -v sysname="$system" -v paths="$scratch/file-systems" '
  # Every occurrence of the text `token` in `line` replaced by `value`,
  # taken literally (gsub would read "&" and "\" in it).
  function replace(line, token, value,   out, at) {
    out = ""
    while ((at = index(line, token)) > 0) {
      out = out substr(line, 1, at - 1) value
      line = substr(line, at + length(token))
    }
    return out line
  }
  function fill(line, path, id) {
    line = replace(line, "@SYSTEM_NAME@", sysname)
    # The path goes between single quotes: a quote in it is closed, escaped, reopened.
    line = replace(line, "@FILE_SYSTEM@", replace(path, "\047", "\047\\\047\047"))
    return replace(line, "@DEVICE_ID@", id)
  }
  # Prints the block gathered so far once per file system (only for the
  # first one when `onlyFirst`).
  function flush(   i, path, id, count) {
    if (blockSize == 0) return
    count = 0
    while ((getline path < paths) > 0 && !(onlyFirst && count == 1)) {
      count++
      id = path
      sub(/.*DeviceID="/, "", id)
      sub(/".*/, "", id)
      for (i = 1; i <= blockSize; i++) print fill(block[i], path, id)
    }
    close(paths)
    blockSize = 0
  }
  /^@each-file-system@ / {
    if (onlyFirst) flush()
    onlyFirst = 0
    block[++blockSize] = substr($0, length("@each-file-system@ ") + 1)
    next
  }
  /^@first-file-system@ / {
    if (!onlyFirst) flush()
    onlyFirst = 1
    block[++blockSize] = substr($0, length("@first-file-system@ ") + 1)
    next
  }
  { flush(); print fill($0, "", "") }
  END { flush() }
' "$here/demo.cmpihost.in" >"$scratch/demo.cmpihost"

status=0
"$cmpihost" "$@" run "$scratch/demo.cmpihost" || status=$?
exit "$status"
