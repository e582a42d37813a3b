"""Reads the files and INI files of a machine folder as a Windows machine would show them."""

import os
import re
import stat
import struct
import time

from hives import HKCU, HKLM, Registry, find_case, is_prefix

READ_ONLY, HIDDEN, SYSTEM, ARCHIVE = 1, 2, 4, 32


def units(text):
    """Length of a text in UTF-16 units."""
    return len(text.encode("utf-16-le", "surrogatepass")) // 2


def fold(text):
    """Lower case, one character to one."""
    return "".join(c.lower() if len(c.lower()) == 1 else c for c in text)


def windows_name(name):
    """A host name, bytes, as text; stray bytes become private-use letters."""
    return "".join(chr(0xF700 + ord(c) - 0xDC00) if 0xDC80 <= ord(c) <= 0xDCFF else c
                   for c in name.decode("utf-8", "surrogateescape"))


# ---- version resources ------------------------------------------------------------------------------


def _version_resource(image):
    """The first version resource of a PE file, or None."""
    pe = struct.unpack_from("<I", image, 0x3C)[0]
    if image[:2] != b"MZ" or image[pe:pe + 4] != b"PE\0\0":
        return None
    sections, = struct.unpack_from("<H", image, pe + 6)
    optional, = struct.unpack_from("<H", image, pe + 20)
    directories = pe + 24 + (112 if struct.unpack_from("<H", image, pe + 24)[0] == 0x20B else 96)
    rva = struct.unpack_from("<I", image, directories + 16)[0]

    def offset(address):
        for i in range(sections):
            header = pe + 24 + optional + 40 * i
            size, start, raw_size, raw = struct.unpack_from("<IIII", image, header + 8)
            if start <= address < start + max(size, raw_size):
                return address - start + raw
        raise struct.error("no such address")

    if rva == 0:
        return None
    base = offset(rva)

    def entries(at):
        named, numbered = struct.unpack_from("<HH", image, at + 12)
        return [struct.unpack_from("<II", image, at + 16 + 8 * i) for i in range(named + numbered)]

    below = [place for name, place in entries(base) if name == 16]
    if not below:
        return None
    place = below[0]
    while place & 0x80000000:
        place = entries(base + (place & 0x7FFFFFFF))[0][1]
    address, size = struct.unpack_from("<II", image, base + place)
    return image[offset(address):][:size]


def version_text(path):
    """The version of a file as the scan stores it; empty when it has none."""
    try:
        with open(path, "rb") as file:
            resource = _version_resource(file.read())
        if not resource:
            return ""
        length, value_length = struct.unpack_from("<HH", resource, 0)
        at = (6 + len("VS_VERSION_INFO\0") * 2 + 3) // 4 * 4
        signature, _, high, low = struct.unpack_from("<IIII", resource, at)
    except (struct.error, IndexError, OSError):
        return ""
    if value_length < 52 or signature != 0xFEEF04BD:
        return ""

    def halves(word):
        signed = word - 2**32 if word & 0x80000000 else word
        quotient = abs(signed) // 65535
        return f"{-quotient if signed < 0 else quotient}.{word & 65535}"

    return halves(high) + "." + halves(low)


# ---- INI files --------------------------------------------------------------------------------------


def decode_ini(data):
    for mark, encoding in ((b"\xef\xbb\xbf", "utf-8"), (b"\xff\xfe", "utf-16-le"),
                           (b"\xfe\xff", "utf-16-be")):
        if data.startswith(mark):
            return data[len(mark):].decode(encoding, "replace")
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError:
        return ansi_text(data)


def ansi_text(data):
    """Code page 1252; its five holes are the C1 controls of the same number."""
    return "".join(bytes([b]).decode("cp1252") if b not in (0x81, 0x8D, 0x8F, 0x90, 0x9D) else chr(b)
                   for b in data)


def ini_sections(data):
    """Sections in file order, each once, as (name, [whole lines])."""
    sections, current = {}, None
    for line in re.split("\r\n|\r|\n", decode_ini(data)):
        line = line.strip(" \t")
        if not line or line.startswith(";"):
            continue
        if line.startswith("[") and "]" in line:
            name = line[1:line.index("]")]
            current = sections.setdefault(fold(name), (name, []))[1]
        elif current is not None:
            current.append(line)
    return list(sections.values())


# ---- the machine ------------------------------------------------------------------------------------


class Machine:
    """A prefix or a volume: its drives, its files, its registry and its own variables."""

    def __init__(self, folder):
        self.folder = os.path.abspath(folder)
        self.registry = Registry(self.folder)
        self.drives = {}
        if is_prefix(self.folder):
            devices = os.path.join(self.folder, "dosdevices")
            for name in sorted(os.listdir(devices)):
                target = os.path.join(devices, name)
                if re.fullmatch("[a-z]:", name) and os.path.isdir(target):
                    self.drives[name.upper()] = os.path.realpath(target)
        else:
            self.drives["C:"] = self.folder

    def host_path(self, path):
        """Where a Windows path lies on the host, or None."""
        drive, _, rest = path.partition("\\")
        base = self.drives.get(drive.upper())
        return base and find_case(base, *(p for p in rest.split("\\") if p))

    def windows_path(self, host):
        """The Windows path of a host path, or None where no drive holds it."""
        host = os.path.realpath(host)
        for drive, base in self.drives.items():
            if host == base or host.startswith(base.rstrip("/") + "/"):
                return drive + "\\" + host[len(base.rstrip("/")) + 1:].replace("/", "\\")
        return None

    def variable(self, name):
        """An environment variable of the machine's; empty when there is none."""
        current_nt = r"Software\Microsoft\Windows NT\CurrentVersion"
        for hive, path in ((HKCU, "Environment"), (HKCU, "Volatile Environment"),
                           (HKLM, r"System\CurrentControlSet\Control\Session Manager\Environment")):
            key = self.registry.find(hive, path)
            text = key and key.text(name)
            if text:
                return re.sub("%([^%]+)%", lambda m: self.variable(m[1]) or m[0], text)
        if name.lower() in ("systemroot", "windir"):
            key = self.registry.find(HKLM, current_nt)
            return key and key.text("SystemRoot") or r"C:\windows"
        if name.lower() == "systemdrive":
            return self.variable("systemroot")[:2]
        if name.lower() == "userprofile":
            key = self.registry.find(HKLM, current_nt + "\\ProfileList\\" + self.registry.user_sid)
            text = key and key.text("ProfileImagePath") or ""
            return re.sub("%([^%]+)%", lambda m: self.variable(m[1]) or m[0], text)
        return ""

    def windows_folder(self):
        return self.variable("systemroot")

    @staticmethod
    def attributes(path, status):
        """Attribute bits of a file or folder."""
        bits = 0 if stat.S_ISDIR(status.st_mode) else ARCHIVE
        if not status.st_mode & 0o222:
            bits |= READ_ONLY
        try:
            text, _, structure = os.getxattr(path, "user.DOSATTRIB").partition(b"\0")
            stored = int(text, 16) & 0x27
            # Wine stores hidden and system alone, a Samba server all bits and a structure behind.
            return stored if structure else stored | bits
        except (OSError, ValueError):
            return bits | (HIDDEN if os.path.basename(path).startswith(b".") else 0)

    def walk(self, folder, with_version, with_size=True, with_attributes=True):
        """Every folder that a scan enters, in its order, as (path, [file details], [INI files]).

        File details are (name, date, version, size, attributes); INI files are (name, sections).
        """
        if not folder.endswith("\\"):
            folder += "\\"
        host = os.fsencode(self.host_path(folder))
        files, folders, ini_files, seen = [], [], [], set()
        for entry in sorted(os.listdir(host)):
            name = windows_name(entry)
            if re.search('[\\\\:*?"<>|\x00-\x1f]', name) or fold(name) in seen:
                continue
            if units(folder + name) > 32767:
                continue
            seen.add(fold(name))
            path = os.path.join(host, entry)
            try:
                status = os.stat(path)
            except OSError:
                continue  # a link that leads nowhere
            bits = self.attributes(path, status)
            if stat.S_ISDIR(status.st_mode):
                if not os.path.islink(path):
                    folders.append(folder + name)
            elif stat.S_ISREG(status.st_mode):
                date = time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(int(status.st_mtime // 1)))
                files.append((name, date, version_text(path) if with_version else None,
                              status.st_size if with_size else None,
                              bits if with_attributes else None))
                if name.lower().endswith(".ini"):
                    with open(path, "rb") as file:
                        ini_files.append((name, ini_sections(file.read())))
        yield folder, files, ini_files
        for below in folders:
            yield from self.walk(below, with_version, with_size, with_attributes)
