"""Reads the registry of a machine folder: Wine's text hives and the regf hives of a Windows volume.

Shares nothing with the program nor with the makers of samples, so that an error in one of them can't
hide in the other.
"""

import os
import re
import struct
from pathlib import Path

HKCR, HKCU, HKLM, HKU, HKCC = (0x80000000 - 2**32 + i for i in (0, 1, 2, 3, 5))


class Node:
    """A key: name, values as (name, type, data) in the order of the file, subkeys by folded name."""

    def __init__(self, name=""):
        self.name = name
        self.values = []
        self.subkeys = {}
        self.is_link = False

    def child(self, name):
        return self.subkeys.get(name.upper())

    def add(self, name):
        return self.subkeys.setdefault(name.upper(), Node(name))

    def find(self, path):
        node = self
        for part in path.split("\\") if path else ():
            node = node.child(part)
            if node is None:
                return None
        return node

    def value(self, name):
        """(type, data) of a value, or None."""
        return next(((kind, data) for n, kind, data in self.values if n.upper() == name.upper()), None)

    def text(self, name):
        """A string value's text, or None."""
        found = self.value(name)
        return None if found is None else found[1].decode("utf-16-le", "replace").rstrip("\0")


# ---- Wine's text form -------------------------------------------------------------------------------

_SIMPLE = {"a": 7, "b": 8, "t": 9, "n": 10, "v": 11, "f": 12, "r": 13, "e": 27}


def _unescape(text, keep_backslashes=False):
    """UTF-16 units of an escaped text. With `keep_backslashes` a pair of them separates key names
    and comes back as unit -1."""
    units, i = [], 0
    while i < len(text):
        if text[i] != "\\":
            units.append(ord(text[i]))
            i += 1
            continue
        i += 1
        sign = text[i] if i < len(text) else ""
        if sign == "x" and (found := re.match(r"[0-9A-Fa-f]{1,4}", text[i + 1:])):
            units.append(int(found[0], 16))
            i += 1 + len(found[0])
        elif found := re.match(r"[0-7]{1,3}", text[i:]):
            units.append(int(found[0], 8))
            i += len(found[0])
        else:
            separator = keep_backslashes and sign == "\\"
            units.append(-1 if separator else _SIMPLE.get(sign, ord(sign)))
            i += 1
    return units


def _packed(units):
    return struct.pack(f"<{len(units)}H", *units)


def _key_parts(escaped):
    parts, current = [], []
    for unit in _unescape(escaped, True) + [-1]:
        if unit == -1:
            parts.append(_packed(current).decode("utf-16-le", "surrogatepass"))
            current = []
        else:
            current.append(unit)
    return parts


_STRING = r'"((?:[^"\\]|\\.)*)"'
_VALUE = re.compile(rf"(?:@|{_STRING})=(?:(str\([0-9a-f]+\):)?{_STRING}|dword:([0-9a-fA-F]+)|"
                    rf"hex(?:\(([0-9a-f]+)\))?:([0-9a-fA-F,\s]*))$", re.S)


def read_text_hive(filename):
    """(root node, the place in the registry that the file's first lines name)."""
    # A value goes on behind a backslash at its line's end.
    text = Path(filename).read_bytes().decode("latin-1").replace("\\\n", "")
    lines = text.split("\n")
    if lines[0].strip() != "WINE REGISTRY Version 2":
        raise SystemExit(f"{filename}: no registry file of Wine")
    root, node, place = Node(), None, ""
    for line in lines[1:]:
        if line.startswith(";; All keys relative to "):
            place = line.split(" to ", 1)[1].replace("\\\\", "\\")
        elif line.startswith("["):
            node = root
            for part in _key_parts(re.match(r"\[((?:[^\]\\]|\\.)*)\]", line)[1]):
                node = node.add(part)
        elif line == "#link":
            node.is_link = True
        elif line[:1] in ('"', "@"):
            found = _VALUE.match(line)
            if not found:
                raise SystemExit(f"{filename}: not understood: {line[:100]}")
            name, prefix, string, number, kind, digits = found.groups()
            name = _packed(_unescape(name or "")).decode("utf-16-le", "surrogatepass")
            if string is not None:
                kind = int(prefix[4:-2], 16) if prefix else 1
                data = _packed(_unescape(string) + [0])
            elif number is not None:
                kind, data = 4, int(number, 16).to_bytes(4, "little")
            else:
                kind = int(kind, 16) if kind else 3
                data = bytes.fromhex(digits.replace(",", " "))
            # A value that comes again replaces the one before, as in Wine.
            same = [i for i, (n, _, _) in enumerate(node.values) if n.upper() == name.upper()]
            if same:
                node.values[same[0]] = (node.values[same[0]][0], kind, data)
            else:
                node.values.append((name, kind, data))
    return root, place


# ---- regf ------------------------------------------------------------------------------------------


def read_regf(filename):
    """The root node of a regf hive."""
    image = Path(filename).read_bytes()
    if image[:4] != b"regf":
        raise SystemExit(f"{filename}: no regf hive")
    u16 = lambda at: struct.unpack_from("<H", image, at)[0]  # noqa: E731
    u32 = lambda at: struct.unpack_from("<I", image, at)[0]  # noqa: E731
    cell = lambda offset: 0x1000 + offset + 4  # noqa: E731

    def name_at(at, length, compressed):
        return image[at:at + length].decode("latin-1" if compressed else "utf-16-le", "surrogatepass")

    def data_of(size, place):
        if size & 0x80000000:
            return struct.pack("<I", place)[:size & 0x7FFFFFFF]
        at = cell(place)
        if size > 16344 and image[at:at + 2] == b"db":
            pieces = cell(u32(at + 4))
            whole = b"".join(image[cell(u32(pieces + 4 * i)):][:16344] for i in range(u16(at + 2)))
            return whole[:size]
        return image[at:at + size]

    def subkey_offsets(place):
        at = cell(place)
        kind, count = image[at:at + 2], u16(at + 2)
        if kind == b"ri":
            return [o for i in range(count) for o in subkey_offsets(u32(at + 4 + 4 * i))]
        step = 4 if kind == b"li" else 8
        return [u32(at + 4 + step * i) for i in range(count)]

    def read_key(place):
        at = cell(place)
        flags = u16(at + 2)
        node = Node(name_at(at + 76, u16(at + 72), flags & 0x20))
        node.is_link = bool(flags & 0x10)
        values = cell(u32(at + 40)) if u32(at + 36) else 0
        for i in range(u32(at + 36)):
            vk = cell(u32(values + 4 * i))
            name = name_at(vk + 20, u16(vk + 2), u16(vk + 16) & 1)
            node.values.append((name, u32(vk + 12), data_of(u32(vk + 4), u32(vk + 8))))
        if u32(at + 20):
            for offset in subkey_offsets(u32(at + 28)):
                child = read_key(offset)
                node.subkeys[child.name.upper()] = child
        return node

    return read_key(u32(0x24))


# ---- a machine's root keys -------------------------------------------------------------------------


def find_case(folder, *parts):
    """A path below `folder` found without regard to case, or None."""
    for part in parts:
        names = [n for n in os.listdir(folder) if n.lower() == part.lower()] if folder else []
        if not names:
            return None
        folder = os.path.join(folder, min(names))
    return folder


def is_prefix(folder):
    return os.path.isdir(os.path.join(folder, "drive_c"))


class Registry:
    """The five root keys of a machine folder; `roots` maps a hive's number to its node."""

    def __init__(self, folder):
        machine, users = Node(), Node()
        self.user_sid = ""
        if is_prefix(folder):
            machine, _ = read_text_hive(os.path.join(folder, "system.reg"))
            user, place = read_text_hive(os.path.join(folder, "user.reg"))
            default, _ = read_text_hive(os.path.join(folder, "userdef.reg"))
            self.user_sid = place.rpartition("\\")[2]
            # Spelled as on Windows; Wine's file says .Default.
            self._mount(users, ".DEFAULT", default)
            self._mount(users, self.user_sid, user)
        else:
            user = self._read_volume(folder, machine, users)
        self.roots = {HKLM: machine, HKU: users, HKCU: user or Node()}
        self.roots[HKCC] = self.find(HKLM, r"System\CurrentControlSet\Hardware Profiles\Current") or Node()
        self.roots[HKCR] = self._merged(self.find(HKLM, r"Software\Classes"),
                                        self.find(HKCU, r"Software\Classes"))

    @staticmethod
    def _mount(parent, name, node):
        node.name = name
        parent.subkeys[name.upper()] = node

    def _read_volume(self, folder, machine, users):
        config = find_case(folder, "Windows", "System32", "config")
        for name in ("SOFTWARE", "SYSTEM", "SAM", "SECURITY"):
            path = find_case(config, name)
            if path:
                self._mount(machine, name, read_regf(path))
        system = machine.child("SYSTEM")
        select = system and system.child("Select")
        if select:
            number = int.from_bytes(select.value("Current")[1], "little")
            current = system.child(f"ControlSet{number:03}")
            system.subkeys.setdefault("CURRENTCONTROLSET", self._renamed(current, "CurrentControlSet"))
        path = find_case(config, "DEFAULT")
        if path:
            self._mount(users, ".DEFAULT", read_regf(path))
            # On a running machine the local system's key is a link to it.
            users.subkeys["S-1-5-18"] = self._renamed(users.child(".DEFAULT"), "S-1-5-18")
        first = None
        profiles = machine.find(r"SOFTWARE\Microsoft\Windows NT\CurrentVersion\ProfileList")
        for profile in profiles.subkeys.values() if profiles else ():
            image = profile.text("ProfileImagePath") or ""
            parts = re.sub("(?i)%systemdrive%", "C:", image).split("\\")[1:]
            hive = find_case(folder, *parts, "NTUSER.DAT")
            if hive is None:
                continue
            self._mount(users, profile.name, read_regf(hive))
            first = first or profile.name
            classes = find_case(folder, *parts, "AppData", "Local", "Microsoft", "Windows",
                                 "UsrClass.dat")
            if classes:
                self._mount(users, profile.name + "_Classes", read_regf(classes))
                software = users.child(profile.name).add("Software")
                software.subkeys["CLASSES"] = self._renamed(
                    users.child(profile.name + "_Classes"), "Classes")
        logon = machine.find(r"SOFTWARE\Microsoft\Windows\CurrentVersion\Authentication\LogonUI")
        last = logon and logon.text("LastLoggedOnUserSID")
        self.user_sid = last if last and users.child(last) else first or ""
        return users.child(self.user_sid) if self.user_sid else None

    @staticmethod
    def _renamed(node, name):
        copy = Node(name)
        copy.values, copy.subkeys = node.values, node.subkeys
        return copy

    @classmethod
    def _merged(cls, machine, user):
        """The user's classes over the machine's: a value of the user's hides the machine's."""
        merged = Node((machine or user or Node()).name)
        for source in (user, machine):
            if source is None:
                continue
            seen = {name.upper() for name, _, _ in merged.values}
            merged.values += [v for v in source.values if v[0].upper() not in seen]
        names = {**(machine.subkeys if machine else {}), **(user.subkeys if user else {})}
        for folded in names:
            below = [source.subkeys.get(folded) if source else None for source in (machine, user)]
            if None not in below and not any(node.is_link for node in below):
                merged.subkeys[folded] = cls._merged(*below)
            else:
                # A link isn't merged: what the user has hides what the machine has.
                merged.subkeys[folded] = below[1] or below[0]
        return merged

    def find(self, hive, path, hops=16):
        """A key by its path, through links; None when it doesn't exist."""
        node = self.roots[hive]
        for part in path.split("\\") if path else ():
            node = node.child(part)
            if node is not None and node.is_link:
                node = self.follow(node, hops - 1)
            if node is None:
                return None
        return node

    def follow(self, link, hops=16):
        """The key that a link leads to, itself no link; None when there is none."""
        target = link.text("SymbolicLinkValue") or ""
        found = re.match(r"\\registry\\(machine|user)\\?(.*)$", target, re.I | re.S)
        if not found or hops == 0:
            return None
        return self.find(HKLM if found[1].lower() == "machine" else HKU, found[2], hops)

    def walk(self, hive):
        """Every key of a hive as (path, node), a link's contents under the link's own path.

        A link that leads nowhere can't be opened and is empty. So are links below a followed one, as a
        link to a key above it would go on for ever.
        """

        def below(path, node, followed):
            if node.is_link:
                target = None if followed else self.follow(node)
                yield from below(path, target or Node(node.name), True)
                return
            yield path, node
            for child in node.subkeys.values():
                yield from below(f"{path}\\{child.name}" if path else child.name, child, followed)

        yield from below("", self.roots[hive], False)
