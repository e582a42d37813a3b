# shellcheck shell=bash
# Helpers of the acceptance runs; sourced by them.
#
# A run works in a temporary folder that it removes at its end; KEEP=1 keeps it for a look.

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repository=$(cd "$here/../.." && pwd)

# Tells why a run can't take place here; 77 is how test drivers know a skipped test.
skip() {
  echo "skipped: $*"
  exit 77
}

# The program under test: the first argument of the run, $SANDREL_CLI, or the newest build.
find_cli() {
  cli=${1:-${SANDREL_CLI:-}}
  if [ -z "$cli" ]; then
    cli=$(ls -t "$repository"/build/*/src/sandrel-cli "$repository"/build*/src/sandrel-cli 2>/dev/null | head -n 1)
  fi
  [ -x "$cli" ] || skip "no sandrel-cli; build it, or name it as the first argument"
  cli=$(realpath "$cli")
}

make_work_folder() {
  work=$(mktemp -d)
  if [ -z "${KEEP:-}" ]; then
    trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
  else
    echo "kept: $work"
  fi
  home=$work/home
  export SANDREL_SETTINGS="$work/settings.ini"
}

# sandrel-cli on this run's machine, with a home and settings of its own.
sandrel() {
  mkdir -p "$home"
  "$cli" --machine "$work/machine" --home "$home" "$@"
}

# Runs a command that has to fail with the given status and to say something.
must_fail() {
  local status=$1 output actual=0
  shift
  output=$("$@" 2>&1) || actual=$?
  if [ "$actual" -ne "$status" ] || [ -z "$output" ]; then
    echo "$*: status $actual instead of $status, saying: $output"
    exit 1
  fi
}

# Settings, Before, a copy of the machine for the comparison, the installation, After. The arguments
# are the command that installs.
snapshot_pair() {
  sandrel settings Enabled VersionInfo 1
  sandrel settings RegScan HKEY_CLASSES_ROOT True
  must_fail 1 sandrel after "$work/analysis.mdb" --yes  # there is no Before snapshot yet
  sandrel before --yes
  cp -a "$work/machine" "$work/before"
  "$@"
  sandrel after "$work/analysis.mdb" --yes
}

# Compares the analysis and both snapshots with what the two states of the machine say.
check() {
  python3 "$here/expected.py" --version-info \
    --hive HKEY_CLASSES_ROOT --hive HKEY_CURRENT_CONFIG --hive HKEY_CURRENT_USER \
    --hive HKEY_LOCAL_MACHINE --hive HKEY_USERS \
    --home "$home" --database "$home/SandrelTemp.zqd" \
    "$work/before" "$work/machine" "$work/analysis.mdb"
}

# All checks of a run, so that one that fails doesn't hide the others.
check_all() {
  local failed=0
  check || failed=1
  check_replacement || failed=1
  return $failed
}

# Replaces the Before snapshot and takes another After one of the unchanged machine: files and registry
# have to be equal then.
check_replacement() {
  sandrel replace || return 1
  sandrel after "$work/again.mdb" --yes || return 1
  python3 - "$work/again.mdb" <<'PYTHON'
import sqlite3, sys
database = sqlite3.connect(sys.argv[1])
faults = [f"{table}: {count} rows after a replacement without a change"
          for kind in ("New{}", "Changed{}", "Deleted{}") for what in ("Files", "RegistryEnteries")
          for table in ("tbl" + kind.format(what),)
          for (count,) in database.execute(f"SELECT count(*) FROM {table}") if count]
sys.exit("\n".join(faults) or None)
PYTHON
}
