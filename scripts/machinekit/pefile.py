"""Small PE32 and PE32+ files with a version resource, as a linker would lay them out."""

import struct

_SECTION_ALIGNMENT = 0x1000
_FILE_ALIGNMENT = 0x200


def _aligned(number, step):
    return (number + step - 1) // step * step


def _padded(data, step=4):
    return data + bytes(_aligned(len(data), step) - len(data))


def _block(key, value=b"", children=(), is_text=False):
    """One node of a version resource: length, value length, type, key, value, children."""
    head = key.encode("utf-16-le") + b"\0\0"
    body = _padded(bytes(6) + head)
    value_length = len(value) // 2 if is_text else len(value)
    body += value
    for child in children:
        body = _padded(body) + child
    return struct.pack("<HHH", len(body), value_length, int(is_text)) + body[6:]


def version_resource(file_version, strings=()):
    """The bytes of a VS_VERSIONINFO; `file_version` is four 16-bit numbers."""
    a, b, c, d = file_version
    fixed = struct.pack(
        "<13I", 0xFEEF04BD, 0x10000, a << 16 | b, c << 16 | d, a << 16 | b, c << 16 | d,
        0x3F, 0, 0x40004, 2, 0, 0, 0)
    texts = dict(strings)
    texts.setdefault("FileVersion", ".".join(map(str, file_version)))
    entries = [_block(name, (text + "\0").encode("utf-16-le"), is_text=True)
               for name, text in texts.items()]
    string_info = _block("StringFileInfo", children=[_block("040904B0", children=entries)])
    translation = _block("Translation", struct.pack("<HH", 0x0409, 0x04B0))
    var_info = _block("VarFileInfo", children=[translation])
    return _block("VS_VERSION_INFO", fixed, [string_info, var_info])


def _resource_section(rva, version):
    """A resource directory with the one entry type 16, name 1, language 0x409."""

    def directory(identifier, offset):
        return struct.pack("<IIHHHH", 0, 0, 0, 0, 0, 1) + struct.pack("<II", identifier, offset)

    tables = (directory(16, 0x80000000 | 24) + directory(1, 0x80000000 | 48)
              + directory(0x409, 72))
    return tables + struct.pack("<IIII", rva + 88, len(version), 0, 0) + version


def build(bits=64, version=None, dll=True, code=b"\xc3", payload=b"", strings=(), timestamp=0):
    """The bytes of a PE file.

    `version` is four 16-bit numbers, or None for a file without resources. `code` fills the first
    section; `payload` is appended behind the last one, as an installer's data are.
    """
    is64 = bits == 64
    sections = [(b".text", code or b"\0", 0x60000020)]
    if version is not None:
        resource_rva = _SECTION_ALIGNMENT + _aligned(len(sections[0][1]), _SECTION_ALIGNMENT)
        resource = _resource_section(resource_rva, version_resource(version, strings))
        sections.append((b".rsrc", resource, 0x40000040))

    optional_size = 240 if is64 else 224
    header_size = _aligned(0x80 + 24 + optional_size + 40 * len(sections), _FILE_ALIGNMENT)
    table, bodies = b"", b""
    rva, offset = _SECTION_ALIGNMENT, header_size
    directories = [(0, 0)] * 16
    for name, body, flags in sections:
        raw_size = _aligned(len(body), _FILE_ALIGNMENT)
        table += struct.pack("<8sIIIIIIHHI", name, len(body), rva, raw_size, offset, 0, 0, 0, 0,
                             flags)
        if name == b".rsrc":
            directories[2] = (rva, len(body))
        bodies += body + bytes(raw_size - len(body))
        offset += raw_size
        rva += _aligned(len(body), _SECTION_ALIGNMENT)

    entry = _SECTION_ALIGNMENT
    common = struct.pack("<BBIIIII", 14, 0, 0x200, 0, 0, entry, entry)
    if is64:
        start = struct.pack("<H", 0x20B) + common + struct.pack("<Q", 0x180000000)
    else:
        start = struct.pack("<H", 0x10B) + common + struct.pack("<II", 0x2000, 0x10000000)
    start += struct.pack("<IIHHHHHHIIIIHH", _SECTION_ALIGNMENT, _FILE_ALIGNMENT, 6, 0, 0, 0, 6, 0, 0,
                         rva, header_size, 0, 3 if not dll else 2, 0x100)
    sizes = (0x100000, 0x1000, 0x100000, 0x1000)
    start += struct.pack("<4Q" if is64 else "<4I", *sizes) + struct.pack("<II", 0, 16)
    start += b"".join(struct.pack("<II", *pair) for pair in directories)

    characteristics = 0x0022 if is64 else 0x0102
    if dll:
        characteristics |= 0x2000
    coff = struct.pack("<HHIIIHH", 0x8664 if is64 else 0x14C, len(sections), timestamp, 0, 0,
                       optional_size, characteristics)
    dos = b"MZ" + bytes(58) + struct.pack("<I", 0x80)
    head = dos.ljust(0x80, b"\0") + b"PE\0\0" + coff + start + table
    return head.ljust(header_size, b"\0") + bodies + payload
