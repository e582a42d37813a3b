"""A registry in memory: keys and values as Windows holds them, ready to be written."""

NONE, SZ, EXPAND_SZ, BINARY, DWORD, DWORD_BIG_ENDIAN, LINK, MULTI_SZ = range(8)
RESOURCE_LIST, FULL_RESOURCE_DESCRIPTOR, RESOURCE_REQUIREMENTS_LIST, QWORD = range(8, 12)

_EPOCH_DELTA = 11644473600  # seconds from 1601 to 1970


def filetime(seconds):
    """100 ns units since 1601 of a Unix time."""
    return (seconds + _EPOCH_DELTA) * 10_000_000


def utf16(text):
    """UTF-16 little endian bytes; lone surrogates pass through."""
    return text.encode("utf-16-le", "surrogatepass")


def sz(text):
    return SZ, utf16(text + "\0")


def expand(text):
    return EXPAND_SZ, utf16(text + "\0")


def multi(*texts):
    return MULTI_SZ, utf16("".join(text + "\0" for text in texts) + "\0")


def dword(number):
    return DWORD, (number & 0xFFFFFFFF).to_bytes(4, "little")


def big_endian(number):
    return DWORD_BIG_ENDIAN, (number & 0xFFFFFFFF).to_bytes(4, "big")


def binary(data):
    return BINARY, bytes(data)


def raw(kind, data):
    return kind, bytes(data)


class Key:
    """A key: its name, its values in order and its subkeys. Names compare without regard to case."""

    __slots__ = ("name", "values", "subkeys", "seconds", "is_link")

    def __init__(self, name, seconds=0):
        self.name = name
        self.values = {}  # folded name -> (name, type, data)
        self.subkeys = {}  # folded name -> Key
        self.seconds = seconds
        self.is_link = False

    def at(self, path):
        """The key below this one with the path `path` (parts joined by a backslash), made if missing."""
        key = self
        for part in path.split("\\") if path else ():
            folded = part.upper()
            child = key.subkeys.get(folded)
            if child is None:
                child = key.subkeys[folded] = Key(part, self.seconds)
            key = child
        return key

    def set(self, name, typed):
        """Sets a value; the default value has the empty name. `typed` is a pair (type, data)."""
        self.values[name.upper()] = (name, *typed)
        return self

    def set_all(self, **values):
        for name, typed in values.items():
            self.set(name, typed)
        return self

    def link_to(self, target):
        """Makes this key a symbolic link to a path as "\\Registry\\Machine\\Software\\Classes"."""
        self.is_link = True
        self.set("SymbolicLinkValue", (LINK, utf16(target)))
        return self

    def remove(self, path):
        """Removes the key with the path `path` and all below it."""
        parent, _, name = path.rpartition("\\")
        del self.at(parent).subkeys[name.upper()]

    def unset(self, name):
        del self.values[name.upper()]

    def sorted_subkeys(self):
        return [self.subkeys[folded] for folded in sorted(self.subkeys)]

    def walk(self, path=""):
        """Every key below and with this one as (path, key), a key before its subkeys."""
        yield path, self
        for child in self.sorted_subkeys():
            yield from child.walk(f"{path}\\{child.name}" if path else child.name)
