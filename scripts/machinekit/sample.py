"""The sample machine: its files, its INI files and its registry.

Everything comes out the same at every run: names, contents, times and values.
"""

import os
from pathlib import Path

from . import pefile, regtree
from .regtree import binary, dword, expand, multi, raw, sz

MARKER = ".sandrel-sample"
USER = "anna"
USER_SID = "S-1-5-21-0-0-0-1000"
BASE_TIME = 1_552_550_400  # 2019-03-14 08:00:00 UTC
CLASSES = r"Software\Classes"
CURRENT = r"Software\Microsoft\Windows\CurrentVersion"
CURRENT_NT = r"Software\Microsoft\Windows NT\CurrentVersion"
CONTROL = r"System\CurrentControlSet"

WIN_INI = """; for 16-bit app support
[fonts]
[extensions]
txt=notepad.exe ^.txt
hlp=winhlp32.exe ^.hlp
[mci extensions]
aif=MPEGVideo
wav=waveaudio
[Desktop]
Wallpaper=(None)
TileWallpaper=0
[Ports]
COM1:=9600,n,8,1,x
LPT1:=
FILE:=
[MAIL]
MAPI=1
"""

SYSTEM_INI = """; for 16-bit app support
[386Enh]
woafont=dosapp.fon
EGA80WOA.FON=EGA80WOA.FON
device=vtdapi.386
device=*vpd
DEVICE=vdd.386
device=*int13

[drivers]
wave=mmdrv.dll
timer=timer.drv

[386enh]
device=dva.386
FileSysChange=off

[mci]
avivideo=mciavi32.dll
; videodisc=mcipionr.drv
waveaudio=mciwave.dll
"""

# Programs of the sample: folder, vendor, bits, names of the PE files, version.
PROGRAMS = [
    (r"Program Files/Brightwater Notes", "Brightwater", 64, ["notes.exe", "sync.dll", "ink.dll"],
     (4, 2, 0, 118)),
    (r"Program Files (x86)/Kestrel Imaging", "Kestrel", 32,
     ["kestrel.exe", "codec.dll", "twain.dll", "raw.dll"], (11, 0, 3, 7)),
    (r"Program Files/Common Files/Tallow Shared", "Tallow", 64, ["tallow1.dll", "tallow2.dll"],
     (1, 65535, 2, 9)),
]


def build_files(drive, rng):
    """Writes the files and folders of drive C:."""

    def put(path, data):
        target = drive / path
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(data if isinstance(data, bytes) else data.encode("utf-8"))
        return target

    def text_file(path, lines):
        return put(path, "".join(f"Line {i} of {Path(path).name}, {rng.randrange(10**6)}\r\n"
                                 for i in range(lines)))

    def program(path, bits, version, **more):
        code = rng.randbytes(rng.randrange(64, 3000))
        return put(path, pefile.build(bits, version, code=code, dll=path.lower().endswith(".dll"),
                                      **more))

    for number in range(70):
        version = (10, 0, rng.randrange(20000), rng.randrange(65536))
        program(f"windows/system32/mod{number:03}.dll", 64, version)
    for number in range(45):
        version = (6, rng.randrange(4), rng.randrange(9999), rng.randrange(65536))
        program(f"windows/syswow64/mod{number:03}.dll", 32, version)
    for name in ("explorer.exe", "notepad.exe", "regedit.exe", "system32/cmd.exe"):
        program("windows/" + name, 64, (10, 0, 18362, 1))
    program("windows/system32/nover.dll", 64, None)
    program("windows/system32/highword.dll", 32, (0x8001, 2, 3, 4))
    put("windows/system32/notape.dll", b"MZ is not all that a program needs\r\n")
    put("windows/system32/cut.dll", pefile.build(64, (1, 2, 3, 4))[:300])
    for number in range(24):
        put(f"windows/Fonts/face{number:02}.ttf", rng.randbytes(rng.randrange(100, 900)))
    for number in range(18):
        text_file(f"windows/inf/driver{number:02}.inf", 12)
        text_file(f"windows/help/topic{number:02}.hlp", 6)
    put("windows/win.ini", WIN_INI.replace("\n", "\r\n"))
    put("windows/system.ini", SYSTEM_INI.replace("\n", "\r\n"))
    put("windows/WIN386.SWP", bytes(4096))
    put("windows/control.ini", "[Patterns]\r\n(None)=(None)\r\nempty=\r\nno equals sign here\r\n"
        "=no name\r\n a = b=c \r\n")
    put("windows/temp/install.log", "nothing yet\r\n")

    for folder, vendor, bits, names, version in PROGRAMS:
        for name in names:
            program(f"{folder}/{name}", bits, version, strings={"CompanyName": vendor})
        text_file(f"{folder}/readme.txt", 10)
        text_file(f"{folder}/Help/manual.chm", 30)
        for number in range(20):
            put(f"{folder}/data/part{number:02}.bin", rng.randbytes(rng.randrange(20, 500)))
        (drive / folder / "plugins").mkdir()
    put("Program Files/Brightwater Notes/notes.ini",
        ("[Recent]\r\nfile=C:\\a.txt\r\nfile=C:\\b.txt\r\nFile=C:\\c.txt\r\n"
         "[Größen]\r\nBreite=640\r\nHöhe=480\r\n").encode("utf-16"))
    put("Program Files (x86)/Kestrel Imaging/Kestrel.INI",
        "[Paths]\nBilder=C:\\users\\Public\\Größe\nPreis=5 €\n[UI]\nTheme=dark\n".encode("cp1252"))
    put("Program Files/Common Files/Tallow Shared/tallow.Ini",
        "\ufeff[Setup]\r\nOwner=Zoë\r\n\r\n  [ui]  \r\n  scale = 2  \r\n;x=1\r\n")
    put("Program Files/Common Files/Tallow Shared/tallow.ini.bak", "[Setup]\r\nOwner=old\r\n")

    home = f"users/{USER}"
    for number in range(30):
        text_file(f"{home}/Documents/letter {number:02}.txt", rng.randrange(1, 20))
    text_file(f"{home}/Documents/Übersicht – alt.txt", 3)
    for folder in ("Desktop", "Downloads", "Music", "AppData/Roaming/Microsoft/Windows/Templates",
                   "AppData/Local/Temp/cab"):
        (drive / home / folder).mkdir(parents=True)
    text_file(f"{home}/AppData/Local/Temp/setup1.tmp", 4)
    put(f"{home}/AppData/Local/Temp/left.ini", "[Left]\r\nbehind=1\r\nkept=1\r\n")
    text_file(f"{home}/.profile", 2)
    text_file(f"{home}/.cache/thumbs.db", 2)
    put(f"{home}/AppData/Roaming/Brightwater/user.ini",
        "[Window]\r\nTop=10\r\nLeft=20\r\n[Long]\r\n" + "p" * 300 + "=too long\r\nshort=fits\r\n")
    for number in range(12):
        text_file(f"users/Public/Documents/shared{number:02}.txt", 3)
    put("ProgramData/Tallow/license.dat", rng.randbytes(256)).chmod(0o444)
    (drive / "windows/system32/mod000.dll").chmod(0o555)
    (drive / "ProgramData/Brightwater/Spool/empty").mkdir(parents=True)
    hide(put(f"{home}/Desktop/desktop.ini", "[.ShellClassInfo]\r\nIconIndex=3\r\n"), 0x6)
    text_file("ProgramData/Tallow/Secret/unseen.txt", 1)
    hide(drive / "ProgramData/Tallow/Secret", 0x2)
    build_odd_files(drive, f"{home}/Odd", put)


def hide(path, bits):
    """Stores attribute bits as Wine does, where the file system takes them."""
    try:
        os.setxattr(path, "user.DOSATTRIB", f"0x{bits:x}".encode())
    except OSError:
        pass


def build_odd_files(drive, odd, put):
    """What a Linux folder can hold and a Windows one can't, and the other way round."""
    put(f"{odd}/README.TXT", "the first of two\r\n")
    put(f"{odd}/Readme.txt", "the twin\r\n")
    put(f"{odd}/what?.txt", "no Windows name\r\n")
    put(f"{odd}/{'deep' * 50}/{'name' * 30}.txt", "a long path\r\n")
    with open(os.path.join(os.fsencode(drive / odd), b"caf\xe9.txt"), "wb") as file:
        file.write(b"a name in code page 1252\r\n")
    os.symlink("README.TXT", drive / odd / "linked.txt")
    os.symlink("nowhere", drive / odd / "dangling")
    os.symlink("..", drive / odd / "upwards")
    os.mkfifo(drive / odd / "pipe")


def build_machine_hive(rng):
    """HKEY_LOCAL_MACHINE."""
    root = regtree.Key("", BASE_TIME)
    root.at(CURRENT_NT).set_all(SystemRoot=sz(r"C:\windows"), ProductName=sz("Windows 10 Pro"),
                                CurrentBuild=sz("18362"), InstallDate=dword(BASE_TIME),
                                DigitalProductId=binary(rng.randbytes(164)))
    root.at(CURRENT).set_all(ProgramFilesDir=sz(r"C:\Program Files"),
                             CommonFilesDir=sz(r"C:\Program Files\Common Files"),
                             DevicePath=expand(r"%SystemRoot%\inf"))
    profiles = root.at(CURRENT_NT + r"\ProfileList")
    profiles.set_all(ProfilesDirectory=sz(r"C:\users"), Public=sz(r"C:\users\Public"))
    profiles.at(USER_SID).set_all(Flags=dword(0), ProfileImagePath=sz(rf"C:\users\{USER}"),
                                  Sid=binary(bytes.fromhex("010500000000000515000000")))
    environment = root.at(CONTROL + r"\Control\Session Manager\Environment")
    environment.set_all(ComSpec=expand(r"%SystemRoot%\system32\cmd.exe"), OS=sz("Windows_NT"),
                        TEMP=expand(r"%SystemRoot%\temp"), TMP=expand(r"%SystemRoot%\temp"),
                        Path=expand(r"%SystemRoot%\system32;%SystemRoot%"))
    root.at(CONTROL + r"\Control\Session Manager").set(
        "PendingFileRenameOperations", multi(r"\??\C:\old.dll", r"\??\C:\windows\old.dll"))
    root.at(r"System\Select").set_all(Current=dword(1), Default=dword(1), LastKnownGood=dword(1))
    root.at(CONTROL + r"\Hardware Profiles\Current\Software\Fonts").set("LogPixels", dword(96))

    for number in range(150):
        service = root.at(rf"{CONTROL}\Services\svc{number:03}")
        service.set_all(Type=dword(rng.choice((1, 2, 16, 32))), Start=dword(rng.randrange(5)),
                        ImagePath=expand(rf"%SystemRoot%\system32\drivers\svc{number:03}.sys"),
                        DependOnService=multi("RpcSs", f"svc{(number + 1) % 150:03}"))
        service.at("Security").set("Security", binary(rng.randbytes(rng.randrange(20, 200))))
    for number in range(300):
        clsid = f"{{{rng.getrandbits(32):08X}-0000-0000-C000-{number:012X}}}"
        key = root.at(rf"{CLASSES}\CLSID\{clsid}").set("", sz(f"Sample class {number}"))
        key.at("InprocServer32").set("", sz(rf"C:\windows\system32\mod{number % 70:03}.dll")).set(
            "ThreadingModel", sz(rng.choice(("Apartment", "Both", "Free"))))
        key.at("ProgID").set("", sz(f"Sample.Class{number}.1"))
        root.at(rf"{CLASSES}\Sample.Class{number}.1").set("", sz(f"Sample class {number}")).at(
            "CLSID").set("", sz(clsid))
    for number in range(120):
        root.at(rf"{CLASSES}\.x{number:02}").set("", sz(f"file{number}")).set(
            "Content Type", sz(f"application/x-sample-{number}"))
    fonts = root.at(CURRENT_NT + r"\Fonts")
    for number in range(24):
        fonts.set(f"Face {number} (TrueType)", sz(f"face{number:02}.ttf"))
    for folder, vendor, bits, _, version in PROGRAMS:
        node = r"Software\Wow6432Node" if bits == 32 else "Software"
        uninstall = root.at(rf"{node}\Microsoft\Windows\CurrentVersion\Uninstall\{vendor}")
        uninstall.set_all(DisplayName=sz(folder.rpartition("/")[2]), NoModify=dword(1),
                          DisplayVersion=sz(".".join(map(str, version))),
                          InstallLocation=sz("C:\\" + folder.replace("/", "\\")))
    root.at(r"Software\Wow6432Node\Classes").link_to(r"\Registry\Machine\Software\Classes")

    # Every type and form of value, in one key.
    forms = root.at(r"Software\Sample Forms").set("", sz("a default value"))
    forms.set("empty text", sz("")).set("expand", expand("%windir%\\x")).set("list", multi("a", "b"))
    forms.set("empty list", multi()).set("number", dword(0x123)).set("negative", dword(-2))
    forms.set("big endian", regtree.raw(5, bytes.fromhex("00000123")))
    forms.set("big endian 8", regtree.raw(5, bytes.fromhex("89ABCDEF")))
    forms.set("none", raw(regtree.NONE, b"\x01\x00\x80A")).set("nothing", raw(regtree.NONE, b""))
    forms.set("link", raw(regtree.LINK, regtree.utf16(r"\Registry\Machine\Nowhere")))
    forms.set("bytes", binary(bytes(range(256)))).set("no bytes", binary(b""))
    forms.set("resources", raw(regtree.RESOURCE_LIST, rng.randbytes(32)))
    forms.set("descriptor", raw(regtree.FULL_RESOURCE_DESCRIPTOR, rng.randbytes(16)))
    forms.set("requirements", raw(regtree.RESOURCE_REQUIREMENTS_LIST, rng.randbytes(8)))
    forms.set("qword", raw(regtree.QWORD, (2**40 + 5).to_bytes(8, "little")))
    forms.set("own type", raw(0x1F00, b"abc"))
    forms.set("no zero", raw(regtree.SZ, regtree.utf16("cut off")))
    forms.set("size 0", raw(regtree.SZ, b"")).set("list size 0", raw(regtree.MULTI_SZ, b""))
    forms.set("list no zero", raw(regtree.MULTI_SZ, regtree.utf16("one\0two")))
    forms.set("inner zero", raw(regtree.SZ, regtree.utf16("left\0right\0")))
    forms.set("quote \" and \\ and ]", sz("C:\\\"x\"\t1\r\n2"))
    forms.set("Größe – Ω", sz("5 € ‹Ω› 日本 😀")).set("list Ω", multi("ä€", "Ω", "\x81"))
    forms.at("[brackets] and Ωx").set("x", sz("y"))
    forms.at("no values")
    forms.at("digits\x7f1").set("\x011", sz("\x0178"))
    forms.set("n" * 255, sz("fits")).set("N" * 256, sz("doesn't fit"))
    forms.at("p" * 120 + "\\" + "q" * 115).set("deep", sz("fits")).at("r" * 60).set("x", sz("doesn't"))

    # Copies of the current control set, which an analysis leaves out.
    for number in (1, 2):
        root.at(rf"System\ControlSet{number:03}\Services\svc000").set("Start", dword(number))
    root.at(r"System\Clone2\Control").set("x", dword(1))
    return root


def build_user_hive(rng):
    """HKEY_CURRENT_USER."""
    root = regtree.Key("", BASE_TIME)
    root.at("Environment").set_all(TEMP=expand(r"%USERPROFILE%\AppData\Local\Temp"),
                                   TMP=expand(r"%USERPROFILE%\AppData\Local\Temp"))
    root.at("Volatile Environment").set_all(USERPROFILE=sz(rf"C:\users\{USER}"), USERNAME=sz(USER),
                                            HOMEDRIVE=sz("C:"), HOMEPATH=sz(rf"\users\{USER}"))
    colors = root.at(r"Control Panel\Colors")
    for number in range(30):
        colors.set(f"Color{number}", sz(" ".join(str(rng.randrange(256)) for _ in range(3))))
    root.at(r"Control Panel\Desktop").set_all(
        Wallpaper=sz(""), UserPreferencesMask=binary(bytes.fromhex("9e1e078012000000")),
        MenuShowDelay=sz("400"))
    for vendor in ("Brightwater", "Kestrel", "Tallow"):
        for number in range(25):
            root.at(rf"Software\{vendor}\View{number}").set_all(
                Left=dword(rng.randrange(2000)), Top=dword(rng.randrange(1000)),
                Title=sz(f"Window {number}"), Placement=binary(rng.randbytes(44)))
    root.at(rf"{CLASSES}\.x01").set("", sz("the user's own"))
    root.at(r"Software\VB and VBA Program Settings\Sandrel\Enabled").set("RegScan", sz("1"))
    return root


def build_default_hive(rng):
    """HKEY_USERS\\.DEFAULT."""
    root = regtree.Key("", BASE_TIME)
    for number in range(20):
        root.at(r"Control Panel\Colors").set(f"Color{number}", sz(str(rng.randrange(256))))
    root.at(r"Software\Microsoft\Windows\CurrentVersion\Explorer").set("Logon", dword(1))
    return root


def set_times(drive, rng):
    """Gives every file and folder a time of its own, the same at every run."""
    paths = sorted(os.path.join(folder, name)
                   for folder, folders, files in os.walk(os.fsencode(drive))
                   for name in folders + files)
    for path in paths:
        seconds = BASE_TIME + rng.randrange(0, 10_000_000)
        os.utime(path, (seconds, seconds), follow_symlinks=False)
