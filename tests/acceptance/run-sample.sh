#!/bin/bash
# Takes both snapshots of the sample prefix, with the sample installation in between, and checks the
# analysis.
#
#   run-sample.sh [SANDREL-CLI]
set -eu
. "$(dirname "$0")/common.sh"
find_cli "${1:-}"
make_work_folder
# The program's own folder on the machine's drive is excluded from the analysis.
home=$work/machine/drive_c/tools/sandrel

python3 "$repository/scripts/make-sample-machine" "$work/machine"
snapshot_pair python3 "$repository/scripts/sample-installation" "$work/machine"
check_all
