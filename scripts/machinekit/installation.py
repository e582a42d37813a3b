"""The installation on the sample machine: one of each kind of difference that Sandrel reports."""

import os
import shutil
import sys

from . import pefile, regtree
from .regtree import binary, dword, expand, multi, raw, sz

NOW = 1_563_000_000  # 2019-07-13 06:40:00 UTC, later than every time of the sample machine
PRODUCT = r"Software\Lanternfish\Studio"
UNINSTALL = r"Software\Microsoft\Windows\CurrentVersion\Uninstall"


class Files:
    """Changes on drive C:; every file written gets the installation's time."""

    def __init__(self, drive):
        self.drive = drive
        self.counts = {"new": 0, "changed": 0, "deleted": 0}

    def write(self, path, data):
        target = self.drive / path
        self.counts["changed" if target.exists() else "new"] += 1
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(data)
        os.utime(target, (NOW, NOW))

    def delete(self, path):
        (self.drive / path).unlink()
        self.counts["deleted"] += 1

    def delete_tree(self, path):
        self.counts["deleted"] += sum(len(names) for _, _, names in os.walk(self.drive / path))
        shutil.rmtree(self.drive / path)

    def edit_ini(self, path, encoding, *replacements):
        """Replaces pieces of an INI file's text, each of which has to be there."""
        # Bytes, not text mode, which would change the line ends.
        text = (self.drive / path).read_bytes().decode(encoding)
        for old, new in replacements:
            if old not in text:
                sys.exit(f"sample-installation: {path} doesn't hold {old!r}; "
                         "make a fresh machine with make-sample-machine first.")
            text = text.replace(old, new, 1)
        self.write(path, text.encode(encoding))


def change_files(files, rng):
    studio = "Program Files/Lanternfish Studio"
    for name, bits in (("studio.exe", 64), ("render.dll", 64), ("legacy.dll", 32)):
        files.write(f"{studio}/{name}", pefile.build(bits, (2, 1, 0, 40),
                                                     name.endswith(".dll"), rng.randbytes(2000)))
    files.write(f"{studio}/readme – lies mich.txt", b"Thank you\r\n")
    files.write(f"{studio}/studio.ini", b"[Start]\r\nFirst=1\r\nPlugin=a\r\nPlugin=b\r\n")
    files.write(f"{studio}/.hidden.cfg", b"x")
    files.write(f"{studio}/.hiddenfolder/unseen.txt", b"x")
    (files.drive / studio / "plugins/empty").mkdir(parents=True)

    # A later version of a shared file, with the time that it had.
    shared = files.drive / "Program Files/Common Files/Tallow Shared/tallow1.dll"
    stamp = shared.stat().st_mtime
    files.write("Program Files/Common Files/Tallow Shared/tallow1.dll",
                pefile.build(64, (1, 65535, 3, 0), code=rng.randbytes(900)))
    os.utime(shared, (stamp, stamp))

    grown = "users/anna/Documents/letter 03.txt"
    files.write(grown, (files.drive / grown).read_bytes() + b"one more line\r\n")
    files.counts["changed"] += 1
    (files.drive / "users/anna/Documents/letter 04.txt").chmod(0o444)  # only the attribute
    renamed = files.drive / "users/anna/Documents/letter 05.txt"
    renamed.rename(renamed.with_name("LETTER 05.txt"))  # no difference on a Windows machine

    files.delete("windows/help/topic03.hlp")
    files.delete_tree("Program Files (x86)/Kestrel Imaging/Help")
    files.write("Program Files (x86)/Kestrel Imaging/plugins/first.dat", b"no longer empty")
    files.delete("ProgramData/Tallow/license.dat")  # leaves an empty folder

    # What the default exclusions leave out.
    files.write("users/anna/AppData/Local/Temp/unpacked/setup.dat", rng.randbytes(100))
    files.write("windows/WIN386.SWP", bytes(8192))


def change_ini_files(files):
    files.edit_ini("windows/win.ini", "ascii",
                   ("[Desktop]\r\n", "[Desktop]\r\nPattern=(None)\r\n"),          # new
                   ("Wallpaper=(None)", "WallPaper=C:\\studio.bmp"),              # changed
                   ("TileWallpaper=0\r\n", ""),                                   # deleted
                   ("hlp=winhlp32.exe ^.hlp", "hlp=WINHLP32.EXE ^.hlp"))          # case alone
    files.edit_ini("windows/system.ini", "ascii",
                   ("device=dva.386\r\n", "device=dva.386\r\ndevice=lantern.386\r\n"),  # repetition
                   ("device=*vpd", "device=*newvpd"),
                   ("[mci]\r\n", "[Lanternfish]\r\nStudio=1\r\n[mci]\r\n"))       # new section
    files.edit_ini("Program Files/Brightwater Notes/notes.ini", "utf-16",
                   ("Höhe=480", "Höhe=600"), ("file=C:\\b.txt\r\n", ""))
    files.edit_ini("Program Files (x86)/Kestrel Imaging/Kestrel.INI", "cp1252",
                   ("Preis=5 €", "Preis=6 €"))
    files.edit_ini("users/anna/AppData/Local/Temp/left.ini", "ascii",
                   ("behind=1\r\n", ""), ("kept=1", "kept=2\r\nadded=1"))


def change_machine_hive(editor):
    put = lambda path, name, typed: editor.set(path, name, typed, NOW)  # noqa: E731
    put(PRODUCT, "", sz("Lanternfish Studio"))
    put(PRODUCT, "Path", expand(r"%ProgramFiles%\Lanternfish Studio"))
    put(PRODUCT, "Version", dword(0x20001))
    put(PRODUCT, "Minus", dword(-1))
    put(PRODUCT, "Key", binary(b"\x00\x01\xfe\xff"))
    put(PRODUCT, "Types", multi(".lf", ".größe", "Ω"))
    put(PRODUCT, "Swapped", raw(regtree.DWORD_BIG_ENDIAN, b"\x12\x34\x56\x78"))
    put(PRODUCT, "Link", raw(regtree.LINK, b"\\\0R\0"))
    put(PRODUCT, "Stream", raw(regtree.NONE, b"raw"))
    put(PRODUCT, "List", raw(regtree.RESOURCE_LIST, b"\x01\x02"))
    put(PRODUCT, "Long", raw(regtree.QWORD, bytes(range(8))))
    put(PRODUCT + r"\No values", None, None)
    put(UNINSTALL + r"\Lanternfish", "DisplayName", sz("Lanternfish Studio 2.1"))
    put(r"Software\Classes\.lf", "", sz("Lanternfish.Document"))
    put(r"System\CurrentControlSet\Services\lantern", "Start", dword(3))
    put(r"System\ControlSet001\Services\lantern", "Start", dword(3))  # left out by default

    forms = r"Software\Sample Forms"
    put(forms, "", sz("another default value"))
    put(forms, "number", dword(0x124))
    put(forms, "expand", sz(r"%windir%\x"))  # the type alone
    put(forms, "empty text", sz("no longer"))
    put(forms, "bytes", binary(bytes(range(255))))
    put(forms, "list", multi("a", "b", "c"))
    put(forms, "none", raw(regtree.NONE, b"\x01\x00\x80B"))
    put(forms, "big endian", raw(regtree.DWORD_BIG_ENDIAN, bytes.fromhex("80000123")))
    put(forms, "qword", raw(regtree.QWORD, (2**40 + 6).to_bytes(8, "little")))
    put(forms, "cut off", sz("new"))
    put(forms, "Größe – Ω", sz("6 € ‹Ω› 日本 😀"))
    put(r"Software\Microsoft\Windows\CurrentVersion", "ProgramFilesDir", sz(r"c:\program files"))
    editor.unset(forms, "own type")
    editor.unset(forms, "inner zero")
    editor.remove(UNINSTALL + r"\Brightwater")
    editor.remove(r"Software\Classes\.x07")


def change_user_hive(editor):
    put = lambda path, name, typed: editor.set(path, name, typed, NOW)  # noqa: E731
    put(PRODUCT + r"\Window", "Left", dword(77))
    put(r"Software\Kestrel\View3", "Title", sz("Window three"))
    put(r"Control Panel\Desktop", "Wallpaper", sz(r"C:\studio.bmp"))
    put(r"Software\VB and VBA Program Settings\Sandrel\Enabled", "RegScan", sz("0"))  # left out
    editor.unset(r"Software\Kestrel\View4", "Placement")
    editor.remove(r"Software\Tallow\View24")
