#!/bin/bash
# Watches a real installer in a real Wine prefix by sandrel-cli, then leads the wizard round it on a
# virtual display, and checks both analyses. Needs what run-wine.sh needs.
#
#   run-watch.sh [SANDREL-CLI]
set -eu
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/wine.sh"
need_wine
find_cli "${1:-}"
make_work_folder
export WINEPREFIX="$work/machine"
make_wine_machine

sandrel settings Enabled VersionInfo 1
sandrel settings RegScan HKEY_CLASSES_ROOT True
cp -a "$work/machine" "$work/before"
unset WINEPREFIX  # the program names the prefix itself
must_fail 2 sandrel watch "$work/analysis.mdb" -- "$work/setup/none.exe"
xvfb-run -a "$cli" --machine "$work/machine" --home "$home" \
  watch "$work/analysis.mdb" -- "$work/setup/setup.exe" /S
check

window_tests=$(dirname "$cli")/../tests/sandrel_window_tests
[ -x "$window_tests" ] || skip "the wizard: no sandrel_window_tests beside $cli"
rm -rf "$work/machine" "$work/analysis.mdb" "$home"
cp -a "$work/before" "$work/machine"
SANDREL_WINE_WORK=$work QT_QPA_PLATFORM=xcb xvfb-run -a "$window_tests" \
  --gtest_filter=Wizard.LeadsRoundARealInstaller
check
