#!/usr/bin/env bash
# Compiles the CMPI ABI fingerprint against a header set and compares it with
# the CMPI 2.0 reference, so that a layout, constant or member-type change in
# cmpi/ fails the build's tests rather than a provider in a real CIMOM.
#
# usage: check_fingerprint.sh COMPILER c|c++ INCLUDE_DIR ABI_TOOL_DIR WORK_DIR [ABSENT_MACROS_FILE]
#
# With ABSENT_MACROS_FILE it also checks the convenience macros: exactly the
# macros listed in that file may be missing from cmpimacs.h.
# Exit 77 (skipped) when the ABI tool directory is not there.
set -u

compiler=$1 lang=$2 include_dir=$3 tool_dir=$4 work_dir=$5 absent_file=${6:-}

fingerprint=$tool_dir/fingerprint.c
reference=$tool_dir/reference-cmpi-2.0.txt
if [[ ! -f $fingerprint || ! -f $reference ]]; then
  echo "SKIP: $tool_dir does not hold fingerprint.c and reference-cmpi-2.0.txt"
  exit 77
fi

case $lang in
  c) lang_flags=(-x c -std=c99) ;;
  c++) lang_flags=(-x c++ -std=c++17) ;;
  *)
    echo "unknown language '$lang' (expected c or c++)" >&2
    exit 2
    ;;
esac

mkdir -p "$work_dir" || exit 2
exe=$work_dir/fingerprint-$lang
defines=(-DFP_SIGS)
[[ -n $absent_file ]] && defines+=(-DFP_MACROS)

if ! "$compiler" "${lang_flags[@]}" -Wall -Wextra -Werror -I "$include_dir" "${defines[@]}" \
  "$fingerprint" -o "$exe"; then
  echo "FAIL: fingerprint.c does not compile as $lang against $include_dir"
  exit 1
fi
if ! "$exe" >"$exe.txt"; then
  echo "FAIL: $exe did not run to completion"
  exit 1
fi

status=0
# The reference was made in C; the language line is the one expected difference.
if ! diff <(grep -v -e '^info language ' -e '^macro ' "$reference") \
  <(grep -v -e '^info language ' -e '^macro ' "$exe.txt"); then
  echo "FAIL: the headers in $include_dir differ from CMPI 2.0 (< reference, > headers)"
  status=1
fi

if [[ -n $absent_file ]]; then
  if ! diff <(grep -v '^#' "$absent_file" | sort) \
    <(sed -n 's/^macro \(.*\) 0$/\1/p' "$exe.txt" | sort); then
    echo "FAIL: convenience macros missing (>) or unexpectedly present (<) in $include_dir/cmpimacs.h"
    status=1
  fi
fi

[[ $status -eq 0 ]] && echo "OK: $include_dir matches CMPI 2.0 ($lang${absent_file:+, macros})"
exit $status
