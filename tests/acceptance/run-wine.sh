#!/bin/bash
# Takes both snapshots of a real Wine prefix, with a real installer run in it in between, and checks the
# analysis. Needs Debian's packages wine64, nsis, xvfb and python3.
#
#   run-wine.sh [SANDREL-CLI]
set -eu
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/wine.sh"
need_wine
find_cli "${1:-}"
make_work_folder
export WINEPREFIX="$work/machine"

make_wine_machine

install() {
  run_wine "$work/setup/setup.exe" /S
  wait_for_server
  [ -f "$work/machine/drive_c/Program Files/Marlin Editor/marlin.exe" ] || {
    echo "the installer did nothing"
    return 1
  }
}

snapshot_pair install
check_all
