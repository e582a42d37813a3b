#!/bin/bash
# Installs a build into a temporary folder and checks that the installed programs find each other and keep
# out of their own folders.
#
#   run-installed.sh [BUILD-FOLDER]
set -eu
. "$(dirname "$0")/common.sh"
build=${1:-$repository/build/release}
[ -e "$build/src/sandrel-cli" ] || skip "no build in $build"
make_work_folder
cmake --install "$build" --prefix "$work/usr" >"$work/install.log"
cli=$work/usr/bin/sandrel-cli
installed=$(cd "$work/usr" && find . | sort)

for file in bin/sandrel libexec/sandrel/AsyncStartup libexec/sandrel/sandrel-print share/applications/sandrel.desktop \
  share/sandrel/sandrel.hlp share/icons/hicolor/48x48/apps/sandrel.png share/man/man1/sandrel-cli.1.gz; do
  [ -s "$work/usr/$file" ] || { echo "not installed: $file"; exit 1; }
done
if ldd "$cli" | grep -E 'Qt|libX'; then
  echo "sandrel-cli needs a window library"
  exit 1
fi

python3 "$repository/scripts/make-sample-machine" "$work/machine" >"$work/machine.log"
export HOME=$work/user XDG_DATA_HOME=$work/user/data
unset SANDREL_HOME
"$cli" --machine "$work/machine" before
python3 "$repository/scripts/sample-installation" "$work/machine" >>"$work/machine.log"
"$cli" --machine "$work/machine" after "$work/analysis.mdb"
[ -e "$XDG_DATA_HOME/sandrel/SandrelTemp.zqd" ] || { echo "the snapshots are not in the user's folder"; exit 1; }
QT_QPA_PLATFORM=offscreen "$cli" print "$work/analysis.mdb" "$work/page.pdf" ShowNewFiles
[ "$(head -c 5 "$work/page.pdf")" = %PDF- ] || { echo "nothing was printed"; exit 1; }
must_fail 2 "$work/usr/libexec/sandrel/AsyncStartup"
QT_QPA_PLATFORM=offscreen must_fail 2 "$work/usr/bin/sandrel" --frob
if [ "$(cd "$work/usr" && find . | sort)" != "$installed" ]; then
  echo "a program wrote into its own folders"
  exit 1
fi
echo "installed programs: passed"
