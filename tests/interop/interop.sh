#!/usr/bin/env bash
# The example plug-in in a real CIMOM (SFCB or OpenPegasus): installed with
# `cmake --install`, deployed by running the deploy README's own shell blocks,
# and driven over loopback HTTP with wbemcli. CTest runs one server per
# CIMOM and each group of cases against it as a test of its own:
#
#   interop.sh OPTIONS setup        install, deploy (README blocks), start
#   interop.sh OPTIONS case NAME    one group of cases (a case_NAME function below)
#   interop.sh OPTIONS stop         stop the server
#
# OPTIONS: --cimom sfcb|pegasus  --home DIR (the CIMOM as the kit built it)
#          --build DIR (build tree to install)  --work DIR (scratch, per CIMOM)
#          --shared DIR (../shared)  --source DIR (the project)
#          --idle SECONDS (the wait of the idle case)
#
# Every request is printed with its answer, so that a failure in CI reads
# without a rerun; the last line is "N passed, N failed" and the exit status
# is non-zero when anything failed.
set -uo pipefail

cimom='' home='' build='' work='' shared='' source='' idle=35 verb='' case_name=''
while [ $# -gt 0 ]; do
  case $1 in
    --cimom) cimom=$2; shift 2 ;;
    --home) home=$2; shift 2 ;;
    --build) build=$2; shift 2 ;;
    --work) work=$2; shift 2 ;;
    --shared) shared=$2; shift 2 ;;
    --source) source=$2; shift 2 ;;
    --idle) idle=$2; shift 2 ;;
    setup | stop) verb=$1; shift ;;
    case) verb=case; case_name=${2:?case NAME}; shift 2 ;;
    *) echo "interop.sh: unknown argument $1" >&2; exit 2 ;;
  esac
done
for v in cimom home build work shared source verb; do
  [ -n "${!v}" ] || { echo "interop.sh: --$v is missing" >&2; exit 2; }
done
case $cimom in sfcb | pegasus) ;; *) echo "interop.sh: --cimom sfcb|pegasus" >&2; exit 2 ;; esac

mkdir -p "$work"
work=$(cd "$work" && pwd) home=$(cd "$home" && pwd)
kit=$shared/cimom
prefix=$work/prefix           # where `cmake --install` puts the project
readme=$source/examples/filesystem-diag/deploy/README.md
# OpenPegasus runs from a home of its own per run (see make_pegasus_home).
[ "$cimom" = pegasus ] && instance=$work/pegasus-home || instance=$home
# A request that hangs must not hang the suite.
wbem_timeout=60

passed=0 failed=0
failures=()
pass() { passed=$((passed + 1)); echo "  ok: $1"; }
fail() { failed=$((failed + 1)); failures+=("$1"); echo "  FAILED: $1"; }
check() {  # check DESCRIPTION COMMAND...: passes when the command succeeds
  local what=$1; shift
  if "$@"; then pass "$what"; else fail "$what"; fi
}
finish() {
  echo
  [ ${#failures[@]} -eq 0 ] || printf 'failed: %s\n' "${failures[@]}"
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
  exit
}

# ---------------------------------------------------------------------------
# OpenPegasus keeps its start file, lock and local socket in /var/tmp, the
# same for every server on the machine: a second server refuses to start and
# `cimserver -s` stops whichever server owns the socket. Each run therefore
# gets a private /var/tmp in a mount namespace of its own, held open by a
# sleeping process; every Pegasus command of the run enters it. (The
# provider then sees that /var/tmp as one more mounted file system to test.)
ns_pidfile=$work/namespace.pid
in_ns() {
  if [ "$cimom" = pegasus ] && [ -s "$ns_pidfile" ]; then
    nsenter -t "$(cat "$ns_pidfile")" -m -- "$@"
  else
    "$@"
  fi
}
open_namespace() {
  mkdir -p "$work/var-tmp"
  rm -f "$ns_pidfile"
  if ! unshare -m --propagation private true 2>/dev/null; then
    echo "note: no mount namespace here; OpenPegasus uses the machine's /var/tmp"
    return
  fi
  # Bounded: the namespace outlives the longest run (the nightly idle case).
  unshare -m --propagation private \
    sh -c 'mount --bind "$1" /var/tmp && exec sleep 7200' sh "$work/var-tmp" \
    < /dev/null > /dev/null 2>&1 &
  echo $! > "$ns_pidfile"
  for _ in $(seq 50); do
    [ "$(readlink "/proc/$(cat "$ns_pidfile")/ns/mnt")" != "$(readlink /proc/self/ns/mnt)" ] &&
      grep -q " /var/tmp " "/proc/$(cat "$ns_pidfile")/mounts" 2>/dev/null && return
    sleep 0.1
  done
  echo "could not open a mount namespace"; return 1
}
close_namespace() {
  [ -s "$ns_pidfile" ] || return 0
  kill "$(cat "$ns_pidfile")" 2>/dev/null
  rm -f "$ns_pidfile"
}

# The shell environment of the README's blocks and of the CIMOM's commands.
cimom_env() {
  export DIAGCORE=$prefix
  if [ "$cimom" = sfcb ]; then
    export PATH=$home/bin:$home/sbin:$PATH
    export SFCB_CFG=$home/etc/sfcb/sfcb.cfg SFCB_SCHEMA=$home/share/mof/cim-current
  else
    export PEGASUS_HOME=$instance PATH=$instance/bin:$PATH
    export LD_LIBRARY_PATH=$instance/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
  fi
}

port_file=$work/port
port() { cat "$port_file"; }
url() { echo "http://localhost:$(port)/root/cimv2"; }

# A loopback port nobody listens on, from a range away from the CIMOMs' own.
free_port() {
  local p
  for _ in $(seq 100); do
    p=$((20000 + RANDOM % 20000))
    (exec 3<>"/dev/tcp/127.0.0.1/$p") 2>/dev/null || { echo "$p"; return; }
  done
  return 1
}

start_server() {
  if [ "$cimom" = sfcb ]; then
    "$kit/sfcb" "$home" start "$(port)"
  else
    in_ns "$kit/openpegasus" "$instance" start "$(port)"
  fi
}
stop_server() {
  if [ "$cimom" = sfcb ]; then
    "$kit/sfcb" "$home" stop
  else
    [ -d "$instance/bin" ] && in_ns "$kit/openpegasus" "$instance" stop
  fi
  return 0
}

# SFCB's deploy steps change its configuration and repository in place; a
# copy of both as the kit built them is put back before every run, so that
# runs do not pile up on each other.
sfcb_pristine() {
  local keep=$home/.interop-pristine
  if [ ! -d "$keep" ]; then
    mkdir -p "$keep"
    cp -a "$home/etc/sfcb/sfcb.cfg" "$home/var/lib/sfcb/stage" "$home/var/lib/sfcb/registration" "$keep/"
  else
    rm -rf "$home/var/lib/sfcb/stage" "$home/var/lib/sfcb/registration"
    cp -a "$keep/stage" "$keep/registration" "$home/var/lib/sfcb/"
    cp -a "$keep/sfcb.cfg" "$home/etc/sfcb/sfcb.cfg"
  fi
}

# OpenPegasus reads its configuration, repository and provider folder from
# PEGASUS_HOME, so a run gets a fresh home: the kit's programs, a copy of its
# libraries (the provider folder), of its repository and of its files
# (configuration, certificates).
make_pegasus_home() {
  rm -rf "$instance"
  mkdir -p "$instance"
  ln -s "$home/bin" "$instance/bin"
  cp -a "$home/lib" "$home/repository" "$instance/"
  # Where the README's trace settings write (the server does not create it).
  mkdir -p "$instance/trace"
  local f
  for f in "$home"/*; do [ -f "$f" ] && cp -a "$f" "$instance/"; done
  return 0
}

# The shell blocks of the deploy README tagged `<!-- interop: TAG ... -->`,
# one after the other, each as it stands.
readme_blocks() {
  awk -v tag="$1" '
    /<!-- interop:/ { n = split($0, w, /[ \t]+/); want = 0
                      for (i = 1; i <= n; i++) if (w[i] == tag) want = 1
                      next }
    want && /^[ \t]*```sh/ { inside = 1; next }
    inside && /^[ \t]*```/ { inside = 0; want = 0; print "#--"; next }
    inside { sub(/^   /, ""); print }' "$readme"
}
run_readme() {
  local tag=$1 script
  script=$(readme_blocks "$tag")
  if [ -z "$script" ]; then
    fail "the deploy README has shell blocks tagged '$tag'"
    return 1
  fi
  echo "--- deploy README, blocks tagged '$tag':"
  echo "$script" | sed 's/^/    /'
  echo "--- output:"
  # All blocks in one shell (a `cd` carries on, as for a reader typing
  # them), which stops at the first failing command.
  # Into a file, not a pipe: a server the blocks start keeps its inherited
  # output open for as long as it runs.
  local status=0
  in_ns bash -euo pipefail -c "$script" > "$work/readme-$tag.log" 2>&1 < /dev/null || status=$?
  sed 's/^/    /' "$work/readme-$tag.log"
  if [ "$status" -eq 0 ]; then
    pass "the deploy README's '$tag' steps run"
  else
    fail "the deploy README's '$tag' steps run"
    return 1
  fi
}

# ---------------------------------------------------------------------------
# wbemcli with its output printed: OUT holds the answer, RC the exit status.
OUT='' RC=0
wbem() {
  echo "\$ wbemcli $*"
  OUT=$(timeout "$wbem_timeout" wbemcli "$@" 2>&1)
  RC=$?
  if [ -n "$OUT" ]; then
    sed 's/^/    /' <<< "$OUT"
  fi
  echo "    [exit $RC]"
}
# The same without printing, for loops and counts.
wbem_quiet() { OUT=$(timeout "$wbem_timeout" wbemcli "$@" 2>&1); RC=$?; }

lines() { [ -z "$1" ] && echo 0 || grep -c '' <<< "$1"; }

# A path as a comparable text: no host, the namespace, the class, and its
# keys with lower-case names in name order, so that two paths naming the
# same object compare equal whatever order their keys came in.
norm_paths() {
  awk '
    function flush(   i, j, t) {
      for (i = 2; i <= nk; i++) for (j = i; j > 1 && key[j - 1] > key[j]; j--) {
        t = key[j]; key[j] = key[j - 1]; key[j - 1] = t }
      out = head; for (i = 1; i <= nk; i++) out = out (i == 1 ? "." : ",") key[i]
      print out
    }
    {
      line = $0; sub(/^http:\/\//, "", line)
      # wbemcli prints a reference that names its host (OpenPegasus sends
      # them so) without the colon before the class: "localhost/root/cimv2FSD_X"
      while (match(line, /\/cimv2[A-Za-z_]/)) line = substr(line, 1, RSTART + 5) ":" substr(line, RSTART + 6)
      # the host (and port) before the namespace, when there is one: a
      # CIMOM may name the host in a reference it returns ("vm/root/cimv2:")
      if (match(line, /^[^\/:]*:[0-9]+\//)) line = substr(line, RLENGTH + 1)
      else { c1 = index(line, ":"); h = substr(line, 1, c1 - 1)
             if (gsub(/\//, "/", h) >= 2) line = substr(line, index(line, "/") + 1) }
      dot = index(line, "."); if (dot == 0) { print line; next }
      head = substr(line, 1, dot - 1); rest = substr(line, dot + 1)
      nk = 0; cur = ""; q = 0
      for (i = 1; i <= length(rest); i++) {
        c = substr(rest, i, 1)
        if (q && c == "\\") { cur = cur c substr(rest, i + 1, 1); i++; continue }
        if (c == "\"") q = !q
        if (!q && c == ",") { key[++nk] = cur; cur = ""; continue }
        cur = cur c
      }
      if (cur != "") key[++nk] = cur
      for (i = 1; i <= nk; i++) { e = index(key[i], "="); key[i] = tolower(substr(key[i], 1, e - 1)) substr(key[i], e) }
      flush()
    }' | sort
}
# The same path with its keys in the opposite order.
reverse_keys() {
  awk '{
    line = $0; dot = index(line, "."); head = substr(line, 1, dot - 1); rest = substr(line, dot + 1)
    nk = 0; cur = ""; q = 0
    for (i = 1; i <= length(rest); i++) {
      c = substr(rest, i, 1)
      if (q && c == "\\") { cur = cur c substr(rest, i + 1, 1); i++; continue }
      if (c == "\"") q = !q
      if (!q && c == ",") { key[++nk] = cur; cur = ""; continue }
      cur = cur c
    }
    if (cur != "") key[++nk] = cur
    out = head; for (i = nk; i >= 1; i--) out = out (i == nk ? "." : ",") key[i]
    print out }'
}
# wbemcli prints paths as host:port/namespace:Class.keys; requests take
# them after http://, and a reference parameter without host and port.
as_url() { echo "http://$1"; }
as_ref() { echo "${1#*/}"; }

# The processes that have this run's copy of the plug-in mapped: the
# provider processes (SFCB: one per provider; OpenPegasus: cimprovagt).
deployed_lib() {
  if [ "$cimom" = sfcb ]; then echo "$prefix/lib/cmpi/libfilesystemdiag.so"; else echo "$instance/lib/libfilesystemdiag.so"; fi
}
provider_pids() {
  local lib maps pids=()
  lib=$(deployed_lib)
  for maps in /proc/[0-9]*/maps; do
    grep -qF "$lib" "$maps" 2>/dev/null && { maps=${maps#/proc/}; pids+=("${maps%/maps}"); }
  done
  [ ${#pids[@]} -eq 0 ] || printf '%s\n' "${pids[@]}" | sort -n | tr '\n' ' '
}

# ---------------------------------------------------------------------------
# What the plug-in serves, as the server lists it.
services() { wbem_quiet ein "$(url):FSD_FileSystemDiagnosticService"; echo "$OUT" | grep -v '^\*' | grep .; }
elements() { wbem_quiet ein "$(url):FSD_MountedFileSystem"; echo "$OUT" | grep -v '^\*' | grep .; }
record_count() {
  wbem_quiet ein "$(url):FSD_FileSystemDiagnosticRecord"
  [ "$RC" -eq 0 ] || { echo "error"; return; }
  echo "$OUT" | grep -c 'FSD_FileSystemDiagnosticRecord'
}
# "SERVICE ELEMENT" per availability, as normalised paths, from the
# references of the FSD_AvailableDiagnosticService instances.
availability() {
  wbem_quiet ei -nl "$(url):FSD_AvailableDiagnosticService"
  echo "$OUT" | awk '
    /^-ServiceProvided=/ { s = $0; sub(/^-ServiceProvided=/, "", s) }
    /^-UserOfService=/ { u = $0; sub(/^-UserOfService=/, "", u) }
    s != "" && u != "" { print s "\t" u; s = ""; u = "" }'
}
# The full wbemcli path (host:port/ns:...) of a normalised or host-less path
# listed by ein, found by comparing normalised texts.
find_listed() {  # find_listed NORMALISED LISTED-PATHS
  local p
  while IFS= read -r p; do
    [ "$(norm_paths <<< "$p")" = "$1" ] && { echo "$p"; return; }
  done <<< "$2"
}

hostname_now=$(hostname)
require_running() {
  [ -s "$port_file" ] || { fail "the server was set up (no port file; did setup run?)"; finish; }
}

# ---------------------------------------------------------------------------
# The cases.

case_classes() {
  local classes=(TORSK_ComputerSystem FSD_MountedFileSystem FSD_FileSystemDiagnosticService
    FSD_FileSystemDiagnosticRecord FSD_FileSystemDiagnosticSettingData
    FSD_FileSystemDiagnosticCapabilities FSD_AvailableDiagnosticService)
  local c names count
  wbem ecn "$(url)"
  names=$OUT
  for c in "${classes[@]}"; do
    check "ecn lists $c" grep -qw "$c" <<< "$names"
  done
  for c in "${classes[@]}"; do
    wbem ein "$(url):$c"
    check "ein $c answers" test "$RC" -eq 0
    count=$(grep -c "$c\." <<< "$OUT")
    [ "$c" = FSD_FileSystemDiagnosticRecord ] ||
      check "ein $c lists instances ($count)" test "$count" -gt 0
    wbem -nl ei "$(url):$c"
    check "ei $c answers" test "$RC" -eq 0
    check "ei $c gives as many instances as ein ($count)" \
      test "$(grep -c "^[^-*].*:$c\." <<< "$OUT")" -eq "$count"
  done
  wbem -nl ei "$(url):FSD_FileSystemDiagnosticService"
  check "both services are served" test "$(grep -c '^-Name=' <<< "$OUT")" -eq 2
  check "every service names this system ($hostname_now)" \
    test "$(grep -c "^-SystemName=\"\?$hostname_now\"\?\$" <<< "$OUT")" -eq 2
  check "no service has an empty SystemName" bash -c '! grep -q "^-SystemName=\"*\$" <<< "$1"' _ "$OUT"
  wbem -nl ei "$(url):TORSK_ComputerSystem"
  check "the computer system is this host" grep -q "^-Name=\"\?$hostname_now\"\?\$" <<< "$OUT"
  wbem ein "$(url):FSD_MountedFileSystem"
  check "the root file system is an element" grep -q 'DeviceID="/"' <<< "$OUT"
  check "every element names this system" \
    test "$(grep -c "SystemName=\"$hostname_now\"" <<< "$OUT")" -eq "$(grep -c 'DeviceID=' <<< "$OUT")"
}

case_get() {
  local s e
  s=$(services | head -n 1)
  e=$(elements | grep 'DeviceID="/"' | head -n 1)
  wbem -nl gi "$(as_url "$s")"
  check "gi of a service answers" test "$RC" -eq 0
  check "gi of a service gives that service" grep -q '^-Name="\?\(FreeSpaceCheck\|WriteReadCheck\)' <<< "$OUT"
  wbem -nl gi "$(as_url "$e")"
  check "gi of an element answers" test "$RC" -eq 0
  check "gi of an element gives that element" grep -q '^-DeviceID="\?/"\?$' <<< "$OUT"
}

# One RunDiagnostic; passes when the call succeeds with a return value.
run_one() {  # run_one SERVICE-PATH ELEMENT-PATH (as listed by ein)
  wbem cm "$(as_url "$1")" "RunDiagnostic.ManagedElement=$(as_ref "$2")"
  [ "$RC" -eq 0 ] && grep -q 'RunDiagnostic' <<< "$OUT"
}

case_run() {
  local avail listed_s listed_e before after runs=0 s e line svc elt
  avail=$(availability)
  check "there are availabilities ($(lines "$avail"))" test -n "$avail"
  listed_s=$(services) listed_e=$(elements)
  before=$(record_count)
  while IFS=$'\t' read -r svc elt; do
    [ -n "$svc" ] || continue
    s=$(find_listed "$(norm_paths <<< "$svc")" "$listed_s")
    e=$(find_listed "$(norm_paths <<< "$elt")" "$listed_e")
    if [ -z "$s" ] || [ -z "$e" ]; then
      fail "the availability $svc -> $elt names a listed service and element"
      continue
    fi
    runs=$((runs + 1))
    check "RunDiagnostic of ${s##*Name=} on ${e##*DeviceID=}" run_one "$s" "$e"
  done <<< "$avail"
  after=$(record_count)
  check "the records grew by the number of runs ($before + $runs = $after)" test "$after" = "$((before + runs))"
  wbem -nl ei "$(url):FSD_FileSystemDiagnosticRecord"
  check "the records say which service ran" grep -q '^-ServiceName=' <<< "$OUT"
}

# Checks one associator/reference request: its paths, normalised, are
# EXPECTED (normalised, possibly empty).
# The objects an association request gives (all, or with a CLASS those of
# that class only: an unfiltered request gives the Diagnostics Profile's
# associations too), compared as normalised paths with EXPECTED.
assoc_is_of() {  # assoc_is_of CLASS|"" DESCRIPTION EXPECTED wbemcli-args...
  local class=$1 what=$2 expected=$3 got pattern=.; shift 3
  [ -z "$class" ] || pattern="[:/]$class\\."
  wbem "$@"
  got=$(grep -v '^\*' <<< "$OUT" | grep "$pattern" | norm_paths)
  if [ "$RC" -ne 0 ]; then fail "$what (exit $RC)"; return; fi
  if [ "$got" = "$expected" ]; then pass "$what"; else
    fail "$what"; echo "    expected:"; sed 's/^/      /' <<< "${expected:-<nothing>}"
  fi
}
assoc_is() {  # assoc_is DESCRIPTION EXPECTED wbemcli-args...
  assoc_is_of "" "$@"
}
assoc_count_of() {  # assoc_count_of DESCRIPTION COUNT CLASS wbemcli-args...
  local what=$1 n=$2 class=$3 got; shift 3
  wbem "$@"
  got=$(grep -c "^[^ ]*$class\." <<< "$OUT")
  if [ "$RC" -eq 0 ] && [ "$got" -eq "$n" ]; then pass "$what"; else
    fail "$what (want $n of $class, got $got, exit $RC)"
  fi
}
# For instance requests (ai, ri): the number of instances and their class.
assoc_count() {  # assoc_count DESCRIPTION COUNT CLASS wbemcli-args...
  local what=$1 n=$2 class=$3 got; shift 3
  wbem "$@"
  got=$(grep -c "^[^ ]*$class\." <<< "$OUT")
  if [ "$RC" -eq 0 ] && [ "$got" -eq "$n" ] && [ "$(grep -v '^\*' <<< "$OUT" | grep -c .)" -eq "$n" ]; then
    pass "$what"
  else
    fail "$what (want $n of $class, got $got, exit $RC)"
  fi
}

case_assoc() {
  local avail listed_s listed_e e s e_norm s_norm svc_of_e elt_of_s refs_e refs_s
  avail=$(availability) listed_s=$(services) listed_e=$(elements)
  e=$(grep 'DeviceID="/"' <<< "$listed_e" | head -n 1)
  s=$(head -n 1 <<< "$listed_s")
  e_norm=$(norm_paths <<< "$e") s_norm=$(norm_paths <<< "$s")
  # What the availabilities say is at the far end of each.
  svc_of_e=$(awk -F'\t' '{ print $1 "\t" $2 }' <<< "$avail" | while IFS=$'\t' read -r a b; do
    [ "$(norm_paths <<< "$b")" = "$e_norm" ] && echo "$a"; done | norm_paths)
  elt_of_s=$(while IFS=$'\t' read -r a b; do
    [ "$(norm_paths <<< "$a")" = "$s_norm" ] && echo "$b"; done <<< "$avail" | norm_paths)
  check "the root file system has services available ($(lines "$svc_of_e"))" test -n "$svc_of_e"
  check "the service is available to elements ($(lines "$elt_of_s"))" test -n "$elt_of_s"
  # Without availabilities every "gives nothing" below would pass for nothing.
  [ -n "$svc_of_e" ] && [ -n "$elt_of_s" ] || return
  local ne ns E S
  ne=$(lines "$svc_of_e") ns=$(lines "$elt_of_s")
  E=$(as_url "$e") S=$(as_url "$s")

  echo "-- from an element: the services available to it"
  assoc_is_of FSD_FileSystemDiagnosticService "ain from an element gives its services" "$svc_of_e" ain "$E"
  assoc_count_of "ai from an element gives its services" "$ne" FSD_FileSystemDiagnosticService ai "$E"
  assoc_is "ain -ac FSD_AvailableDiagnosticService from an element" "$svc_of_e" ain -ac FSD_AvailableDiagnosticService "$E"
  assoc_is "ain -ac CIM_AvailableDiagnosticService from an element" "$svc_of_e" ain -ac CIM_AvailableDiagnosticService "$E"
  assoc_count "ai -ac CIM_AvailableDiagnosticService from an element" "$ne" FSD_FileSystemDiagnosticService ai -ac CIM_AvailableDiagnosticService "$E"
  assoc_is "ain -arc FSD_FileSystemDiagnosticService from an element" "$svc_of_e" ain -arc FSD_FileSystemDiagnosticService "$E"
  assoc_is "ain -arc CIM_DiagnosticService from an element" "$svc_of_e" ain -arc CIM_DiagnosticService "$E"
  assoc_is "ain -arc naming a class the services are not gives nothing" "" ain -arc FSD_MountedFileSystem "$E"
  assoc_is "ain -ar UserOfService from an element" "$svc_of_e" ain -ar UserOfService "$E"
  assoc_is "ain -ar ServiceProvided from an element gives nothing" "" ain -ar ServiceProvided "$E"
  assoc_is "ain -arr ServiceProvided from an element" "$svc_of_e" ain -arr ServiceProvided "$E"
  assoc_is "ain -arr UserOfService from an element gives nothing" "" ain -arr UserOfService "$E"
  echo "-- from an element: the associations that reference it"
  wbem rin "$E"
  refs_e=$(grep -v '^\*' <<< "$OUT" | grep 'FSD_AvailableDiagnosticService\.')
  check "rin from an element gives one association per service ($ne)" \
    test "$RC" -eq 0 -a "$(lines "$refs_e")" -eq "$ne" -a "$(grep -c 'FSD_AvailableDiagnosticService\.' <<< "$refs_e")" -eq "$ne"
  check "every association rin gives references the element" \
    test "$(grep -c "DeviceID=\\\\\?\"/\\\\\?\"" <<< "$refs_e")" -eq "$ne"
  assoc_count_of "ri from an element gives the associations" "$ne" FSD_AvailableDiagnosticService ri "$E"
  assoc_is "rin -arc FSD_AvailableDiagnosticService from an element" "$(norm_paths <<< "$refs_e")" rin -arc FSD_AvailableDiagnosticService "$E"
  assoc_is "rin -arc CIM_AvailableDiagnosticService from an element" "$(norm_paths <<< "$refs_e")" rin -arc CIM_AvailableDiagnosticService "$E"
  assoc_is "rin -arc naming another association gives nothing" "" rin -arc CIM_ServiceAffectsElement "$E"
  assoc_is "rin -ar UserOfService from an element" "$(norm_paths <<< "$refs_e")" rin -ar UserOfService "$E"
  assoc_is "rin -ar ServiceProvided from an element gives nothing" "" rin -ar ServiceProvided "$E"

  echo "-- from a service: the elements it is available to"
  assoc_is_of FSD_MountedFileSystem "ain from a service gives its elements" "$elt_of_s" ain "$S"
  assoc_count_of "ai from a service gives its elements" "$ns" FSD_MountedFileSystem ai "$S"
  assoc_is "ain -ac FSD_AvailableDiagnosticService from a service" "$elt_of_s" ain -ac FSD_AvailableDiagnosticService "$S"
  assoc_is "ain -ac CIM_AvailableDiagnosticService from a service" "$elt_of_s" ain -ac CIM_AvailableDiagnosticService "$S"
  assoc_is "ain -arc FSD_MountedFileSystem from a service" "$elt_of_s" ain -arc FSD_MountedFileSystem "$S"
  assoc_is "ain -arc naming a class the elements are not gives nothing" "" ain -arc FSD_FileSystemDiagnosticService "$S"
  assoc_is "ain -ar ServiceProvided from a service" "$elt_of_s" ain -ar ServiceProvided "$S"
  assoc_is "ain -ar UserOfService from a service gives nothing" "" ain -ar UserOfService "$S"
  wbem rin "$S"
  refs_s=$(grep -v '^\*' <<< "$OUT" | grep 'FSD_AvailableDiagnosticService\.')
  check "rin from a service gives one association per element ($ns)" \
    test "$RC" -eq 0 -a "$(lines "$refs_s")" -eq "$ns" -a "$(grep -c 'FSD_AvailableDiagnosticService\.' <<< "$refs_s")" -eq "$ns"
  assoc_count_of "ri from a service gives the associations" "$ns" FSD_AvailableDiagnosticService ri "$S"
  assoc_is "rin -ar ServiceProvided from a service" "$(norm_paths <<< "$refs_s")" rin -ar ServiceProvided "$S"
  assoc_is "rin -ar UserOfService from a service gives nothing" "" rin -ar UserOfService "$S"
}

case_keyorder() {
  local s e rs re before after svc_of_e
  s=$(services | head -n 1)
  e=$(elements | grep 'DeviceID="/"' | head -n 1)
  rs=$(reverse_keys <<< "$s") re=$(reverse_keys <<< "$e")
  wbem -nl gi "$(as_url "$rs")"
  check "gi of a service with its keys reversed" test "$RC" -eq 0
  wbem -nl gi "$(as_url "$re")"
  check "gi of an element with its keys reversed" test "$RC" -eq 0
  before=$(record_count)
  check "RunDiagnostic with the service's keys reversed" run_one "$rs" "$e"
  check "RunDiagnostic with the element's keys reversed" run_one "$s" "$re"
  after=$(record_count)
  check "both runs left a record ($before + 2 = $after)" test "$after" = "$((before + 2))"
  wbem ain "$(as_url "$e")"
  svc_of_e=$(grep -v '^\*' <<< "$OUT" | grep . | norm_paths)
  check "ain from an element gives services to compare with" test -n "$svc_of_e"
  assoc_is "ain from an element with its keys reversed" "$svc_of_e" ain "$(as_url "$re")"
  assoc_count_of "ai from an element with its keys reversed" \
    "$(grep -c 'FSD_FileSystemDiagnosticService\.' <<< "$svc_of_e")" \
    FSD_FileSystemDiagnosticService ai "$(as_url "$re")"
  wbem rin "$(as_url "$s")"
  check "rin from a service gives associations to compare with" test "$RC" -eq 0 -a -n "$(grep -v '^\*' <<< "$OUT" | grep .)"
  assoc_is "rin from a service with its keys reversed" "$(grep -v '^\*' <<< "$OUT" | grep . | norm_paths)" rin "$(as_url "$rs")"
  wbem ri "$(as_url "$s")"
  assoc_count_of "ri from a service with its keys reversed" "$(grep -c 'FSD_AvailableDiagnosticService\.' <<< "$OUT")" \
    FSD_AvailableDiagnosticService ri "$(as_url "$rs")"
}

case_idle() {
  local s e before_pids before after_pids after
  s=$(services | head -n 1)
  e=$(elements | grep 'DeviceID="/"' | head -n 1)
  # A run first, so that there is a record to lose.
  check "RunDiagnostic before the idle period" run_one "$s" "$e"
  before=$(record_count) before_pids=$(provider_pids)
  check "the provider runs ($before_pids)" test -n "$before_pids"
  echo "-- idle for $idle s (no request)"
  sleep "$idle"
  after_pids=$(provider_pids)
  after=$(record_count)
  check "the records are all there after $idle s idle ($before = $after)" test "$before" = "$after"
  check "the provider was not restarted ($before_pids = $after_pids)" test "$before_pids" = "$after_pids"
}

case_concurrency() {
  local clients=8 rounds=15 s_list e_list avail before after pids_before pids_after i ok=0 bad=0
  avail=$(availability) s_list=$(services) e_list=$(elements)
  # The pairs to run, as listed paths.
  local pairs=() svc elt
  while IFS=$'\t' read -r svc elt; do
    [ -n "$svc" ] || continue
    pairs+=("$(find_listed "$(norm_paths <<< "$svc")" "$s_list")	$(find_listed "$(norm_paths <<< "$elt")" "$e_list")")
  done <<< "$avail"
  check "there are availabilities to run (${#pairs[@]})" test ${#pairs[@]} -gt 0
  [ ${#pairs[@]} -gt 0 ] || return
  before=$(record_count)
  # Load the providers first, so that the process ids name the ones that ran.
  pids_before=$(provider_pids)
  mkdir -p "$work/clients"; rm -f "$work/clients"/*
  for i in $(seq "$clients"); do
    (
      local r pair s e out rc
      for r in $(seq "$rounds"); do
        pair=${pairs[$(((i * 7 + r) % ${#pairs[@]}))]}
        s=${pair%%	*} e=${pair#*	}
        out=$(timeout "$wbem_timeout" wbemcli cm "$(as_url "$s")" "RunDiagnostic.ManagedElement=$(as_ref "$e")" 2>&1); rc=$?
        echo "run $rc $(head -n 1 <<< "$out")"
        out=$(timeout "$wbem_timeout" wbemcli ein "$(url):FSD_FileSystemDiagnosticRecord" 2>&1); rc=$?
        echo "ein $rc $(grep -c FSD_FileSystemDiagnosticRecord <<< "$out") records"
        out=$(timeout "$wbem_timeout" wbemcli ain "$(as_url "$e")" 2>&1); rc=$?
        echo "ain $rc $(grep -c . <<< "$out") paths"
        out=$(timeout "$wbem_timeout" wbemcli -nl ei "$(url):FSD_AvailableDiagnosticService" 2>&1); rc=$?
        echo "ei $rc $(grep -c '^-ServiceProvided' <<< "$out") associations"
      done > "$work/clients/$i.log"
    ) &
  done
  wait
  for i in $(seq "$clients"); do
    echo "-- client $i:"; sed 's/^/    /' "$work/clients/$i.log"
  done
  ok=$(cat "$work/clients"/*.log | grep -c '^run 0 ')
  bad=$(cat "$work/clients"/*.log | grep -vc '^[a-z]* 0 ')
  after=$(record_count)
  pids_after=$(provider_pids)
  check "every concurrent request succeeded ($bad failed)" test "$bad" -eq 0
  check "the records grew by the successful runs ($before + $ok = $after)" test "$after" = "$((before + ok))"
  check "no provider was restarted (${pids_before:-none} = ${pids_after:-none})" test "$pids_before" = "$pids_after"
}

# wbemcli's line for a failed request: "Cim: (7) CIM_ERR_NOT_SUPPORTED: text";
# without a text the client learns only the code (OpenPegasus adds none of
# its own, SFCB does).
has_status_and_message() { grep -q 'Cim: ([1-9][0-9]*) CIM_ERR_[A-Z_]*: .' <<< "$OUT"; }

# A request that must fail with a CIM status and a message.
refused() {  # refused DESCRIPTION wbemcli-args...
  local what=$1; shift
  wbem "$@"
  if [ "$RC" -ne 0 ] && has_status_and_message; then pass "$what"; else fail "$what"; fi
}

# A RunDiagnostic that must be refused with a CIM status and a message,
# running no test and leaving no record.
refused_run() {  # refused_run DESCRIPTION SERVICE-PATH METHOD-ARGUMENT
  local what=$1 before after; before=$(record_count)
  wbem cm "$(as_url "$2")" "$3"
  after=$(record_count)
  if [ "$RC" -eq 0 ] || ! has_status_and_message; then
    fail "$what (no CIM status with a message)"
  elif [ "$before" != "$after" ]; then
    fail "$what (it left a record: $before -> $after)"
  else
    pass "$what"
  fi
}

case_badinput() {
  local s e pids_before pids_after missing ccn
  s=$(services | head -n 1)
  e=$(elements | grep 'DeviceID="/"' | head -n 1)
  run_one "$s" "$e" >/dev/null
  pids_before=$(provider_pids)
  refused_run "RunDiagnostic without ManagedElement" "$s" RunDiagnostic
  # A bare word and a path of an unknown class: SFCB passes both on as references.
  refused_run "RunDiagnostic with a ManagedElement that is no path" "$s" 'RunDiagnostic.ManagedElement=notapath'
  refused_run "RunDiagnostic with a ManagedElement of an unknown class" "$s" 'RunDiagnostic.ManagedElement=root/cimv2:NoSuchClass.X="1"'
  refused "an unknown method" cm "$(as_url "$s")" NoSuchMethod
  ccn='CreationClassName="FSD_FileSystemDiagnosticService",Name="Intruder",SystemCreationClassName="TORSK_ComputerSystem",SystemName="'$hostname_now'"'
  refused "ci of a service" ci "$(url):FSD_FileSystemDiagnosticService.$ccn" "$ccn"
  refused "mi of a service" mi "$(as_url "$s")" 'ElementName="changed"'
  refused "di of a service" di "$(as_url "$s")"
  refused "di of an element" di "$(as_url "$e")"
  missing=${e/DeviceID=\"\/\"/DeviceID=\"/no/such/mount\"}
  refused "gi of an instance that does not exist" gi "$(as_url "$missing")"
  wbem gi "$(as_url "$s")"
  check "the service is still there" test "$RC" -eq 0
  wbem ein "$(url):FSD_FileSystemDiagnosticService"
  check "no service was created" bash -c '! grep -q Intruder <<< "$1"' _ "$OUT"
  pids_after=$(provider_pids)
  check "the provider was not restarted (${pids_before:-none} = ${pids_after:-none})" test "$pids_before" = "$pids_after"
}

# The deploy README's client steps, as they stand, against this server.
case_readme_client() {
  local script before after
  before=$(record_count)
  script=$(readme_blocks client | sed "s#localhost:5988#localhost:$(port)#g")
  echo "--- deploy README, blocks tagged 'client' (port $(port)):"
  sed 's/^/    /' <<< "$script"
  OUT=$(timeout 300 bash -euo pipefail -c "$script" 2>&1); RC=$?
  sed 's/^/    /' <<< "$OUT"
  check "the deploy README's client steps run" test "$RC" -eq 0
  after=$(record_count)
  check "they ran diagnostics ($before -> $after records)" test "$after" -gt "$before"
}

# ---------------------------------------------------------------------------
# The Diagnostics Profile: what a client that follows it walks, with the
# DMTF association names, and RunDiagnosticService with its job.

# The paths of one class among what a request gave (OUT), normalised.
of_class() { grep -v '^\*' <<< "$OUT" | grep "[:/]$1\." | norm_paths; }
# One normalised path, as a URL wbemcli takes (normalised paths have no host).
norm_url() { echo "$(url | sed 's#/root/cimv2$##')/$1"; }
# The ein listing of a class (full wbemcli paths).
listed() { wbem_quiet ein "$(url):$1"; grep -v '^\*' <<< "$OUT" | grep "$1\."; }
# The number of records whose property NAME has a value matching the
# extended regular expression VALUE (ei -nl; "error" when ei fails).
records_where() {  # records_where NAME VALUE
  wbem_quiet ei -nl "$(url):FSD_FileSystemDiagnosticRecord"
  [ "$RC" -eq 0 ] || { echo error; return; }
  grep -Ec "^-$1=\"?$2\"?\$" <<< "$OUT"
}
# One RunDiagnosticService: JOB is the job's path as wbemcli printed it
# (empty when there is none). Passes when the call answers 0 with a Job.
JOB=''
run_service() {  # run_service SERVICE-PATH ELEMENT-PATH [DiagnosticSettings MOF text]
  local args="RunDiagnosticService.ManagedElement=$(as_ref "$2")"
  [ $# -lt 3 ] || args="RunDiagnosticService.DiagnosticSettings=\"$3\",ManagedElement=$(as_ref "$2")"
  wbem cm "$(as_url "$1")" "$args"
  # wbemcli: "PATH RunDiagnosticService: 0, Job (reference): JOB-PATH"
  JOB=$(sed -n 's/^.* RunDiagnosticService: 0, Job (reference): //p' <<< "$OUT" | head -n 1)
  [ "$RC" -eq 0 ] && [ -n "$JOB" ]
}
# A job's path as wbemcli printed it (SFCB: "root/cimv2:FSD_ConcreteJob...",
# OpenPegasus: "localhost/root/cimv2FSD_ConcreteJob...") as a URL.
job_url() { norm_url "$(norm_paths <<< "$1")"; }

case_profile() {
  local s e S E s_norm e_norm name sd cap log L rec R mine pids_before pids_after
  local before after n_log n_elt job_n J
  s=$(services | head -n 1)
  e=$(elements | grep 'DeviceID="/"' | head -n 1)
  S=$(as_url "$s") E=$(as_url "$e")
  s_norm=$(norm_paths <<< "$s") e_norm=$(norm_paths <<< "$e")
  name=$(grep -o '[,.]Name="[^"]*"' <<< "$s" | head -n 1 | cut -d'"' -f2)
  echo "-- service $name: $s"
  # A record of this service on the root file system to walk to.
  check "RunDiagnostic of $name on /" run_one "$s" "$e"
  pids_before=$(provider_pids)
  check "the provider runs (${pids_before:-none})" test -n "$pids_before"

  echo "-- the service and its setting data"
  wbem ain -ac CIM_ElementSettingData "$S"
  sd=$(of_class FSD_FileSystemDiagnosticSettingData)
  check "ain -ac CIM_ElementSettingData from the service gives one setting data ($(lines "$sd"))" \
    test "$RC" -eq 0 -a "$(lines "$sd")" -eq 1 -a "$(grep -v '^\*' <<< "$OUT" | grep -c .)" -eq 1
  check "it is the service's own ($name)" grep -q "$name" <<< "$sd"
  assoc_count "ai -ac CIM_ElementSettingData from the service" 1 FSD_FileSystemDiagnosticSettingData ai -ac CIM_ElementSettingData "$S"
  check "its ResultPersistence is the example's 4294967295" grep -q '^-ResultPersistence=4294967295$' <<< "$(wbemcli -nl gi "$(norm_url "$sd")" 2>&1)"
  if [ -n "$sd" ]; then
    assoc_is "ain -ac CIM_ElementSettingData from the setting data gives the service" "$s_norm" ain -ac CIM_ElementSettingData "$(norm_url "$sd")"
    assoc_count "ai -ac CIM_ElementSettingData from the setting data" 1 FSD_FileSystemDiagnosticService ai -ac CIM_ElementSettingData "$(norm_url "$sd")"
    assoc_count "rin -arc CIM_ElementSettingData from the setting data" 1 FSD_ElementSettingData rin -arc CIM_ElementSettingData "$(norm_url "$sd")"
    assoc_count "ri -arc CIM_ElementSettingData from the service" 1 FSD_ElementSettingData ri -arc CIM_ElementSettingData "$S"
  fi

  echo "-- the service and its capabilities"
  wbem ain -ac CIM_ElementCapabilities "$S"
  cap=$(of_class FSD_FileSystemDiagnosticCapabilities)
  check "ain -ac CIM_ElementCapabilities from the service gives one capabilities ($(lines "$cap"))" \
    test "$RC" -eq 0 -a "$(lines "$cap")" -eq 1 -a "$(grep -v '^\*' <<< "$OUT" | grep -c .)" -eq 1
  check "they are the service's own ($name)" grep -q "$name" <<< "$cap"
  assoc_count "ai -ac CIM_ElementCapabilities from the service" 1 FSD_FileSystemDiagnosticCapabilities ai -ac CIM_ElementCapabilities "$S"
  if [ -n "$cap" ]; then
    assoc_is "ain -ac CIM_ElementCapabilities from the capabilities gives the service" "$s_norm" ain -ac CIM_ElementCapabilities "$(norm_url "$cap")"
    assoc_count "ri -arc CIM_ElementCapabilities from the capabilities" 1 FSD_ElementCapabilities ri -arc CIM_ElementCapabilities "$(norm_url "$cap")"
  fi

  echo "-- the service and its log"
  wbem ain -ac CIM_UseOfLog "$S"
  log=$(of_class FSD_DiagnosticLog)
  check "ain -ac CIM_UseOfLog from the service gives one log ($(lines "$log"))" \
    test "$RC" -eq 0 -a "$(lines "$log")" -eq 1 -a "$(grep -v '^\*' <<< "$OUT" | grep -c .)" -eq 1
  assoc_count "ai -ac CIM_UseOfLog from the service" 1 FSD_DiagnosticLog ai -ac CIM_UseOfLog "$S"
  [ -n "$log" ] || return
  L=$(norm_url "$log")
  assoc_is "ain -ac CIM_UseOfLog from the log gives the service" "$s_norm" ain -ac CIM_UseOfLog "$L"
  assoc_count "rin -arc CIM_UseOfLog from the log" 1 FSD_UseOfLog rin -arc CIM_UseOfLog "$L"

  echo "-- the log and its records"
  n_log=$(records_where ServiceName "$name")
  wbem ain -ac CIM_LogManagesRecord "$L"
  mine=$(of_class FSD_FileSystemDiagnosticRecord)
  check "ain -ac CIM_LogManagesRecord from the log gives the service's records ($n_log)" \
    test "$RC" -eq 0 -a "$(lines "$mine")" = "$n_log" -a "$(grep -v '^\*' <<< "$OUT" | grep -c .)" = "$n_log"
  assoc_count "ai -ac CIM_LogManagesRecord from the log" "$n_log" FSD_FileSystemDiagnosticRecord ai -ac CIM_LogManagesRecord "$L"
  assoc_count "ri -arc CIM_LogManagesRecord from the log" "$n_log" FSD_LogManagesRecord ri -arc CIM_LogManagesRecord "$L"
  rec=$(tail -n 1 <<< "$mine")
  [ -n "$rec" ] || { fail "the log has a record to walk from"; return; }
  R=$(norm_url "$rec")
  assoc_is "ain -ac CIM_LogManagesRecord from a record gives the log" "$log" ain -ac CIM_LogManagesRecord "$R"
  assoc_count "rin -arc CIM_LogManagesRecord from a record" 1 FSD_LogManagesRecord rin -arc CIM_LogManagesRecord "$R"

  echo "-- a record and the element it tested"
  assoc_is "ain -ac CIM_RecordAppliesToElement -arc FSD_MountedFileSystem from a record gives /" "$e_norm" \
    ain -ac CIM_RecordAppliesToElement -arc FSD_MountedFileSystem "$R"
  assoc_count "ai -ac CIM_RecordAppliesToElement from a RunDiagnostic record gives the element only" 1 FSD_MountedFileSystem \
    ai -ac CIM_RecordAppliesToElement "$R"
  # The records' ManagedElementName is the element's DeviceID.
  n_elt=$(records_where ManagedElementName /)
  wbem ain -ac CIM_RecordAppliesToElement "$E"
  local elt_recs; elt_recs=$(of_class FSD_FileSystemDiagnosticRecord)
  check "ain -ac CIM_RecordAppliesToElement from / gives the records of / ($n_elt)" \
    test "$RC" -eq 0 -a "$(lines "$elt_recs")" = "$n_elt"
  check "among them the record walked from" grep -qxF "$rec" <<< "$(of_class FSD_FileSystemDiagnosticRecord)"
  check "and only records" test "$(of_class FSD_FileSystemDiagnosticRecord | grep -c .)" -eq "$(grep -v '^\*' <<< "$OUT" | grep -c .)"
  wbem ri -arc CIM_RecordAppliesToElement "$E"
  check "ri -arc CIM_RecordAppliesToElement from / gives one association per record" \
    test "$RC" -eq 0 -a "$(grep -c '^[^ ]*FSD_RecordAppliesToElement\.' <<< "$OUT")" -eq "$(wbemcli ain -ac CIM_RecordAppliesToElement "$E" 2>/dev/null | grep -c FSD_FileSystemDiagnosticRecord)"

  echo "-- RunDiagnosticService"
  before=$(record_count)
  check "RunDiagnosticService answers 0 and a Job" run_service "$s" "$e"
  after=$(record_count)
  check "it left one record ($before + 1 = $after)" test "$after" = "$((before + 1))"
  [ -n "$JOB" ] || return
  J=$(job_url "$JOB") job_n=$(norm_paths <<< "$JOB")
  wbem -nl gi "$J"
  check "gi of the job answers" test "$RC" -eq 0
  check "the job is an FSD_ConcreteJob" grep -q 'FSD_ConcreteJob' <<< "$JOB"
  check "the job completed (JobState 7, or 10 for a failed test)" grep -Eq '^-JobState=(7|10)$' <<< "$OUT"
  assoc_is "ain -ac CIM_OwningJobElement from the job gives the service" "$s_norm" ain -ac CIM_OwningJobElement "$J"
  assoc_is "ain -ac CIM_AffectedJobElement from the job gives the element" "$e_norm" ain -ac CIM_AffectedJobElement "$J"
  wbem ain -ac CIM_RecordAppliesToElement "$J"
  local jrec; jrec=$(of_class FSD_FileSystemDiagnosticRecord)
  check "ain -ac CIM_RecordAppliesToElement from the job gives one record" \
    test "$RC" -eq 0 -a "$(lines "$jrec")" -eq 1 -a "$(grep -v '^\*' <<< "$OUT" | grep -c .)" -eq 1
  assoc_count "ai -ac CIM_RecordAppliesToElement from the job" 1 FSD_FileSystemDiagnosticRecord ai -ac CIM_RecordAppliesToElement "$J"
  if [ -n "$jrec" ]; then
    assoc_is "the job's record is in the log" "$log" ain -ac CIM_LogManagesRecord "$(norm_url "$jrec")"
    wbem ain -ac CIM_RecordAppliesToElement "$(norm_url "$jrec")"
    check "from the job's record: the element" test "$(of_class FSD_MountedFileSystem)" = "$e_norm"
    check "from the job's record: the job" test "$(of_class FSD_ConcreteJob)" = "$job_n"
  fi
  assoc_is "ain -ac CIM_OwningJobElement -arc FSD_ConcreteJob from the service gives the jobs ain -ac alone gives" \
    "$(wbemcli ain -ac CIM_OwningJobElement "$S" 2>/dev/null | grep -v '^\*' | grep . | norm_paths)" \
    ain -ac CIM_OwningJobElement -arc FSD_ConcreteJob "$S"
  check "the service owns the job" grep -qxF "$job_n" <<< "$(wbemcli ain -ac CIM_OwningJobElement "$S" 2>/dev/null | grep -v '^\*' | norm_paths)"
  check "the element is affected by the job" grep -qxF "$job_n" <<< "$(wbemcli ain -ac CIM_AffectedJobElement "$E" 2>/dev/null | grep -v '^\*' | norm_paths)"

  pids_after=$(provider_pids)
  check "the provider was not restarted (${pids_before:-none} = ${pids_after:-none})" test "$pids_before" = "$pids_after"
}

case_expiry() {
  local s e pids_before pids_after before after jobs_before jobs_after J0 J1 records_svc
  s=$(services | head -n 1)
  e=$(elements | grep 'DeviceID="/"' | head -n 1)
  run_one "$s" "$e" >/dev/null
  pids_before=$(provider_pids)
  check "the provider runs (${pids_before:-none})" test -n "$pids_before"

  echo "-- a run kept for an hour"
  before=$(record_count) jobs_before=$(listed FSD_ConcreteJob | grep -c .)
  check "RunDiagnosticService with DiagnosticSettings ResultPersistence 3600" \
    run_service "$s" "$e" 'instance of CIM_DiagnosticSettingData { ResultPersistence = 3600; };'
  J1=$JOB
  after=$(record_count) jobs_after=$(listed FSD_ConcreteJob | grep -c .)
  check "its record is there ($before + 1 = $after)" test "$after" = "$((before + 1))"
  check "its job is there ($jobs_before + 1 = $jobs_after)" test "$jobs_after" = "$((jobs_before + 1))"
  [ -z "$J1" ] || { wbem gi "$(job_url "$J1")"; check "gi of its job answers" test "$RC" -eq 0; }

  echo "-- a run kept for no time"
  before=$(record_count) jobs_before=$(listed FSD_ConcreteJob | grep -c .)
  check "RunDiagnosticService with DiagnosticSettings ResultPersistence 0" \
    run_service "$s" "$e" 'instance of CIM_DiagnosticSettingData { ResultPersistence = 0; };'
  J0=$JOB
  after=$(record_count) jobs_after=$(listed FSD_ConcreteJob | grep -c .)
  check "its record is gone at the next request ($before = $after)" test "$after" = "$before"
  check "its job is gone too ($jobs_before = $jobs_after)" test "$jobs_after" = "$jobs_before"
  if [ -n "$J0" ]; then
    # The library answers every missing instance with FAILED (1) "Could not
    # find or construct instance" (DiagServiceProviderCommon.h), not NOT_FOUND.
    wbem gi "$(job_url "$J0")"
    check "gi of its job is refused with a status and a message" \
      test "$RC" -ne 0 -a -n "$(has_status_and_message && echo y)"
    wbem ain "$(as_url "$e")"
    check "the element no longer leads to its job" bash -c '! grep -qxF "$1" <<< "$2"' _ "$(norm_paths <<< "$J0")" "$(grep -v '^\*' <<< "$OUT" | norm_paths)"
  fi
  [ -z "$J1" ] || { wbem gi "$(job_url "$J1")"; check "the hour's job is still there" test "$RC" -eq 0; }

  echo "-- settings refused"
  before=$(record_count) jobs_before=$(listed FSD_ConcreteJob | grep -c .)
  wbem cm "$(as_url "$s")" "RunDiagnosticService.DiagnosticSettings=\"instance of CIM_DiagnosticSettingData { NoSuchSetting = 1; };\",ManagedElement=$(as_ref "$e")"
  check "an unknown property: Invalid Parameter (4) with a message naming it" \
    grep -q 'Cim: (4) CIM_ERR_INVALID_PARAMETER: .*NoSuchSetting' <<< "$OUT"
  wbem cm "$(as_url "$s")" "RunDiagnosticService.DiagnosticSettings=\"instance of CIM_DiagnosticSettingData { ResultPersistence = TRUE; };\",ManagedElement=$(as_ref "$e")"
  check "a wrongly typed value: Invalid Parameter (4) with a message naming it" \
    grep -q 'Cim: (4) CIM_ERR_INVALID_PARAMETER: .*ResultPersistence' <<< "$OUT"
  wbem cm "$(as_url "$s")" "RunDiagnosticService.DiagnosticSettings=\"instance of CIM_DiagnosticSettingData { ResultPersistence = -1; };\",ManagedElement=$(as_ref "$e")"
  check "a negative ResultPersistence: Invalid Parameter (4) with a message" \
    grep -q 'Cim: (4) CIM_ERR_INVALID_PARAMETER: .*ResultPersistence' <<< "$OUT"
  refused "RunDiagnosticService without ManagedElement" cm "$(as_url "$s")" RunDiagnosticService
  after=$(record_count) jobs_after=$(listed FSD_ConcreteJob | grep -c .)
  check "the refused runs left no record ($before = $after)" test "$after" = "$before"
  check "and no job ($jobs_before = $jobs_after)" test "$jobs_after" = "$jobs_before"

  pids_after=$(provider_pids)
  check "the provider was not restarted (${pids_before:-none} = ${pids_after:-none})" test "$pids_before" = "$pids_after"
}

# ---------------------------------------------------------------------------
setup() {
  stop_server; close_namespace
  rm -f "$port_file"
  echo "--- cmake --install $build --prefix $prefix"
  rm -rf "$prefix"
  if cmake --install "$build" --prefix "$prefix" > "$work/install.log" 2>&1; then
    pass "cmake --install into a scratch prefix"
  else
    cat "$work/install.log"; fail "cmake --install into a scratch prefix"; finish
  fi
  cimom_env
  free_port > "$port_file" || { fail "a free loopback port"; finish; }
  echo "--- $cimom from $home on port $(port)"
  if [ "$cimom" = sfcb ]; then
    sfcb_pristine
    run_readme sfcb || finish
    check "sfcbd starts" start_server
  else
    make_pegasus_home
    open_namespace || { fail "a private /var/tmp for OpenPegasus"; finish; }
    # The README's steps need the server running (they load classes into it).
    check "cimserver starts" start_server
    run_readme pegasus || finish
    local up=1
    for _ in $(seq 60); do wbem_quiet ecn "$(url)"; [ "$RC" -eq 0 ] && { up=0; break; }; sleep 1; done
    check "cimserver answers after the README's restart" test "$up" -eq 0
  fi
  # The first request loads the providers.
  wbem ein "$(url):FSD_FileSystemDiagnosticService"
  check "the plug-in's services are served" test "$RC" -eq 0 -a "$(grep -c 'FSD_FileSystemDiagnosticService\.' <<< "$OUT")" -eq 2
  echo "provider processes: $(provider_pids)"
  if [ "$cimom" = pegasus ]; then
    # The README sends the provider's log messages to the trace.
    local traced=1
    for _ in $(seq 20); do
      grep -qs 'filesystemdiag' "$instance"/trace/* && { traced=0; break; }
      sleep 0.5
    done
    grep -hs 'filesystemdiag' "$instance"/trace/* | sed 's/^/    /'
    check "the provider's log messages are in \$PEGASUS_HOME/trace" test "$traced" -eq 0
  fi
}

stop() {
  stop_server
  close_namespace
  rm -f "$port_file"
  pass "$cimom stopped"
}

cimom_env
case $verb in
  setup) setup ;;
  stop) stop ;;
  case)
    require_running
    fn=case_${case_name//-/_}
    declare -F "$fn" >/dev/null || { echo "interop.sh: unknown case $case_name" >&2; exit 2; }
    "$fn" ;;
esac
finish
