#!/bin/bash
# Takes both snapshots of an offline Windows volume with regf hives, with an installation in between,
# and checks the analysis.
#
#   run-volume.sh [SANDREL-CLI]
set -eu
. "$(dirname "$0")/common.sh"
find_cli "${1:-}"
make_work_folder

python3 "$here/make-volume" "$work/machine"
snapshot_pair python3 "$here/make-volume" "$work/machine" --installed
check_all
