"""Writes a registry tree as a regf hive, the form in which Windows keeps its registry on disk."""

import struct

from . import regtree

_NONE = 0xFFFFFFFF
_PAGE = 4096
_SEGMENT = 16344  # data bytes in one piece of a large value
_LIST = 500  # subkeys in one list; more of them go into several lists under an index
_ROOT, _FIXED, _COMPRESSED, _IS_LINK = 0x04, 0x08, 0x20, 0x10


def _name_bytes(name):
    """(bytes, True when each character takes one byte)."""
    try:
        return name.encode("latin-1"), True
    except UnicodeEncodeError:
        return regtree.utf16(name), False


def _hash(name):
    value = 0
    for unit in struct.unpack(f"<{len(regtree.utf16(name)) // 2}H", regtree.utf16(name.upper())):
        value = (value * 37 + unit) & 0xFFFFFFFF
    return value


class _Image:
    """The hive's bins. A cell never crosses the end of its bin."""

    def __init__(self, stamp):
        self.data = bytearray()
        self._stamp = stamp
        self._free = 0  # bytes that are left at the end of the last bin

    def _end_bin(self):
        if self._free:
            at = len(self.data) - self._free
            struct.pack_into("<i", self.data, at, self._free)

    def cell(self, body):
        """Stores a cell and returns its offset, by which others refer to it."""
        size = (len(body) + 4 + 7) // 8 * 8
        # What is left behind a cell must hold a free cell, or nothing.
        if size > self._free or 0 < self._free - size < 8:
            self._end_bin()
            room = max(_PAGE, (size + 32 + _PAGE - 1) // _PAGE * _PAGE)
            start = len(self.data)
            self.data += bytes(room)
            struct.pack_into("<4sIIIIQI", self.data, start, b"hbin", start, room, 0, 0, self._stamp, 0)
            self._free = room - 32
        at = len(self.data) - self._free
        struct.pack_into("<i", self.data, at, -size)
        self.data[at + 4:at + 4 + len(body)] = body
        self._free -= size
        return at

    def patch(self, cell, offset, number):
        struct.pack_into("<I", self.data, cell + 4 + offset, number)

    def finish(self):
        self._end_bin()
        return bytes(self.data)


def _store_data(image, data):
    """(length field, place field) of a value's data."""
    if len(data) <= 4:
        return len(data) | 0x80000000, int.from_bytes(data.ljust(4, b"\0"), "little")
    if len(data) <= _SEGMENT:
        return len(data), image.cell(data)
    pieces = [image.cell(data[i:i + _SEGMENT] + bytes(4)) for i in range(0, len(data), _SEGMENT)]
    index = image.cell(struct.pack(f"<{len(pieces)}I", *pieces))
    return len(data), image.cell(struct.pack("<2sHII", b"db", len(pieces), index, 0))


def _store_value(image, name, kind, data):
    encoded, compressed = _name_bytes(name)
    length, place = _store_data(image, data)
    head = struct.pack("<2sHIIIHH", b"vk", len(encoded), length, place, kind, int(compressed), 0)
    return image.cell(head + encoded)


def _store_lists(image, children):
    """Stores the subkey list of sorted (name, cell) pairs and returns its offset."""
    lists = []
    for start in range(0, len(children), _LIST):
        part = children[start:start + _LIST]
        body = struct.pack("<2sH", b"lh", len(part))
        body += b"".join(struct.pack("<II", cell, _hash(name)) for name, cell in part)
        lists.append(image.cell(body))
    if len(lists) == 1:
        return lists[0]
    return image.cell(struct.pack("<2sH", b"ri", len(lists)) + struct.pack(f"<{len(lists)}I", *lists))


def _store_key(image, key, parent, security, flags=0):
    encoded, compressed = _name_bytes(key.name)
    flags |= (_COMPRESSED if compressed else 0) | (_IS_LINK if key.is_link else 0)
    values = [key.values[folded] for folded in key.values]
    children = key.sorted_subkeys()
    longest = lambda items: max((len(item) for item in items), default=0)  # noqa: E731
    head = struct.pack(
        "<2sHQIIIIIIIIIIIIIIIHH", b"nk", flags, regtree.filetime(key.seconds), 0, parent, len(children),
        0, _NONE, _NONE, len(values), _NONE, security, _NONE,
        2 * longest(c.name for c in children), 0, 2 * longest(v[0] for v in values),
        longest(v[2] for v in values), 0, len(encoded), 0)
    cell = image.cell(head + encoded)
    if values:
        cells = [_store_value(image, *value) for value in values]
        image.patch(cell, 40, image.cell(struct.pack(f"<{len(cells)}I", *cells)))
    if children:
        cells = [(child.name, _store_key(image, child, cell, security)) for child in children]
        image.patch(cell, 28, _store_lists(image, cells))
    return cell


def _count(key):
    return 1 + sum(_count(child) for child in key.subkeys.values())


def write(filename, root, name="ROOT"):
    """Writes the tree below `root` as a hive whose root key is called `name`."""
    stamp = regtree.filetime(root.seconds)
    image = _Image(stamp)
    # The security descriptor of all keys: everyone may do everything.
    descriptor = struct.pack("<BBHIIII", 1, 0, 0x8000, 0, 0, 0, 0)
    security = image.cell(struct.pack("<2sHIIII", b"sk", 0, 0, 0, _count(root), len(descriptor))
                          + descriptor)
    image.patch(security, 4, security)
    image.patch(security, 8, security)
    shown = root.name
    root.name = name
    try:
        start = _store_key(image, root, 0, security, _ROOT | _FIXED)
    finally:
        root.name = shown
    bins = image.finish()
    head = bytearray(_PAGE)
    struct.pack_into("<4sIIQIIIIIII", head, 0, b"regf", 1, 1, stamp, 1, 5, 0, 1, start, len(bins), 1)
    base = str(filename).rpartition("/")[2].encode("utf-16-le")[:62]
    head[48:48 + len(base)] = base
    checksum = 0
    for word in struct.unpack_from("<127I", head):
        checksum ^= word
    struct.pack_into("<I", head, 508, checksum or 1)
    with open(filename, "wb") as file:
        file.write(head)
        file.write(bins)
