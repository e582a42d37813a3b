# shellcheck shell=bash
# A real Wine prefix with a real installer for it; sourced after common.sh by the runs over Wine.

need_wine() {
  for tool in wine makensis xvfb-run python3; do
    command -v "$tool" > /dev/null || skip "$tool isn't installed (packages wine64, nsis, xvfb, python3)"
  done
  export WINEDEBUG=-all
}

run_wine() {
  xvfb-run -a wine "$@" > "$work/wine.log" 2>&1 || { cat "$work/wine.log"; return 1; }
}

# Wine's server writes the registry when its last program has gone.
wait_for_server() {
  local server
  for server in wineserver64 wineserver /usr/lib/wine/wineserver64; do
    if command -v "$server" > /dev/null; then
      "$server" -w
      return
    fi
  done
}

build_installer() {
  mkdir "$work/setup"
  cp "$here/installer.nsi" "$work/setup"
  python3 - "$repository/scripts" "$work/setup" "$1" <<'PYTHON'
import pathlib, sys
sys.dont_write_bytecode = True
sys.path.insert(0, sys.argv[1])
from machinekit import pefile
setup, shared = map(pathlib.Path, sys.argv[2:])
(setup / "marlin.exe").write_bytes(pefile.build(64, (3, 1, 4, 15), dll=False))
(setup / "spell.dll").write_bytes(pefile.build(32, (1, 65535, 65535, 1)))
(setup / "engine2.dll").write_bytes(pefile.build(64, (2, 0, 0, 0)))
(setup / "readme.txt").write_text("Thank you\r\n")
shared.mkdir()
(shared / "engine.dll").write_bytes(pefile.build(64, (1, 9, 0, 0)))
for name in ("old.hlp", "attributes.txt", "hidden.txt", "untouched.txt"):
    (shared / name).write_text(name + "\r\n")
(shared / "host.ini").write_bytes(b"[Editors]\r\nDefault=Other\r\nObsolete=1\r\n[Empty]\r\n")
(shared / "drivers.ini").write_bytes(b"[boot]\r\ndevice=first.386\r\n")
PYTHON
  (cd "$work/setup" && makensis -V1 -INPUTCHARSET UTF8 installer.nsi)
}

# A prefix with what the installer finds in it, and the installer.
make_wine_machine() {
  run_wine wineboot -i
  cp "$here/host.reg" "$work/machine/drive_c/host.reg"
  run_wine regedit /S 'C:\host.reg'
  wait_for_server
  build_installer "$work/machine/drive_c/shared"
}
