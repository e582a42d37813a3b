"""Wine's text form of a registry: writing a whole file, and editing one as an installer would."""

import os

from . import regtree

_ESCAPES = {7: "\\a", 8: "\\b", 9: "\\t", 10: "\\n", 11: "\\v", 12: "\\f", 13: "\\r", 27: "\\e"}


def _units(text):
    data = regtree.utf16(text)
    return [data[i] | data[i + 1] << 8 for i in range(0, len(data), 2)]


def escape(text, special):
    """`text` as it stands between two delimiters, whose characters are `special`."""
    units = _units(text)
    out = []
    for i, unit in enumerate(units):
        following = chr(units[i + 1]) if i + 1 < len(units) else " "
        if unit > 127:
            is_hex = following in "0123456789abcdefABCDEF"
            out.append(f"\\x{unit:04x}" if is_hex else f"\\x{unit:x}")
        elif unit < 32:
            plain = f"\\{unit:03o}" if "0" <= following <= "7" else f"\\{unit:o}"
            out.append(_ESCAPES.get(unit, plain))
        else:
            out.append(("\\" if chr(unit) in special or unit == 92 else "") + chr(unit))
    return "".join(out)


def value_name(name):
    return f'"{escape(name, chr(34))}"=' if name else "@="


def _text_data(kind, data):
    """The data as Wine writes what needs no hexadecimal text; None for all else."""
    if kind in (regtree.SZ, regtree.EXPAND_SZ, regtree.MULTI_SZ):
        if len(data) >= 2 and len(data) % 2 == 0 and data[-2:] == b"\0\0":
            text = data[:-2].decode("utf-16-le", "surrogatepass")
            prefix = "" if kind == regtree.SZ else f"str({kind:x}):"
            return f'{prefix}"{escape(text, chr(34))}"'
    if kind == regtree.DWORD and len(data) == 4:
        return f"dword:{int.from_bytes(data, 'little'):08x}"
    return None


def value_lines(name, kind, data):
    """The line or lines of one value, folded as Wine folds hexadecimal text."""
    start = value_name(name)
    text = _text_data(kind, data)
    if text is not None:
        return start + text
    prefix = "hex:" if kind == regtree.BINARY else f"hex({kind:x}):"
    out = [start, prefix]
    column = len(start) + len(prefix)
    last = len(data) - 1
    for i, byte in enumerate(data):
        out.append(f"{byte:02x}")
        column += 2
        if i < last:
            out.append(",")
            column += 1
            if column > 76:
                out.append("\\\n  ")
                column = 2
    return "".join(out)


def key_header(path, seconds):
    escaped = "\\\\".join(escape(part, "[]") for part in path.split("\\"))
    return f"[{escaped}] {seconds}\n#time={regtree.filetime(seconds):x}"


def write(filename, root, relative_to, arch="win64"):
    """Writes the tree below `root` as a registry file whose keys are relative to `relative_to`.

    As in Wine, a key that has only subkeys gets no section of its own; a root key that has nothing
    gets one, so that no file ends before its first key.
    """
    out = ["WINE REGISTRY Version 2", f";; All keys relative to {escape(relative_to, '')}", ""]
    if arch:
        out += [f"#arch={arch}", ""]
    for path, key in root.walk():
        if key.subkeys and not key.values and not key.is_link:
            continue
        out.append(key_header(path, key.seconds))
        if key.is_link:
            out.append("#link")
        out += [value_lines(*key.values[folded]) for folded in sorted(key.values)]
        out.append("")
    with open(filename, "w", encoding="ascii", newline="\n") as file:
        file.write("\n".join(out))


class Editor:
    """Changes keys and values of a registry file and leaves all other lines as they are."""

    def __init__(self, filename):
        self._filename = filename
        with open(filename, encoding="latin-1", newline="\n") as file:
            blocks = file.read().rstrip("\n").split("\n\n")
        self._sections = {}  # folded header path -> [lines], a value with its continuations in one
        self._head = []
        for block in blocks:
            lines = block.split("\n")
            if not lines[0].startswith("["):
                self._head.append(block)
                continue
            joined = [lines[0]]
            for line in lines[1:]:
                if joined[-1].endswith("\\"):
                    joined[-1] += "\n" + line
                else:
                    joined.append(line)
            self._sections[lines[0][1:].rpartition("]")[0].upper()] = joined

    @staticmethod
    def _folded(path):
        return key_header(path, 0)[1:].partition("] ")[0].upper()

    def _value_index(self, lines, name):
        start = value_name(name).upper()
        return next((i for i, l in enumerate(lines) if l.upper().startswith(start)), None)

    def set(self, path, name, typed, seconds):
        """Sets a value, making its key where it is missing; `name` None makes the key alone."""
        header, stamp = key_header(path, seconds).split("\n")
        lines = self._sections.setdefault(self._folded(path), [header, stamp])
        if name is None:
            return
        text = value_lines(name, *typed)
        index = self._value_index(lines, name)
        if index is None:
            lines.append(text)
        else:
            lines[index] = text

    def unset(self, path, name):
        lines = self._sections[self._folded(path)]
        del lines[self._value_index(lines, name)]

    def remove(self, path):
        """Removes a key and all below it."""
        folded = self._folded(path)
        doomed = [p for p in self._sections if p == folded or p.startswith(folded + "\\\\")]
        if not doomed:
            raise KeyError(path)
        for section in doomed:
            del self._sections[section]

    def save(self):
        """Writes the sections in the order of their paths, and replaces the file whole."""
        blocks = self._head + ["\n".join(self._sections[p]) for p in sorted(self._sections)]
        temporary = self._filename + ".new"
        with open(temporary, "w", encoding="latin-1", newline="\n") as file:
            file.write("\n\n".join(blocks) + "\n")
        os.replace(temporary, self._filename)
