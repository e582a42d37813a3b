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

sandrel=$(dirname "$cli")/sandrel
plugins=$(dirname "$cli")/../tests/plugins
[ -d "$plugins" ] || skip "the wizard: no plugin to lead it beside $cli"
rm -rf "$work/machine" "$work/analysis.mdb" "$home"
cp -a "$work/before" "$work/machine"
# The second OK of each scan is to the links that it left out.
steps=(No mnuSnapShotWizard cmdNext cmdNext cmdNext OK OK "txtRun=\"$work/setup/setup.exe\" /S" cmdNext
  'picPage(4)' cmdNext "txtViewName=$work/analysis" cmdNext OK OK 'picPage(6)' cmdFinish mnuFileExit)
SANDREL_STEPS=$(printf '%s\n' "${steps[@]}") QT_QPA_GENERIC_PLUGINS=sandrel_driver QT_PLUGIN_PATH=$plugins \
  XDG_CONFIG_HOME=$work/config QT_QPA_PLATFORM=xcb \
  xvfb-run -a "$sandrel" --machine "$work/machine" --home "$home"
check
