#!/usr/bin/env python3
"""Checks an analysis against two copies of the machine, read and compared here anew.

    expected.py [options] BEFORE AFTER ANALYSIS

BEFORE and AFTER are copies of the machine's folder at the time of the two snapshots (made so that they
keep times, modes and extended attributes). Files, INI files and registry of both are read by the
readers beside this file, the exclusions applied, the nine kinds of differences worked out, and every
row of ANALYSIS compared. With --database the rows of both snapshots are compared too. Every difference
is printed; the exit status is 0 when there is none.
"""

import argparse
import collections
import os
import sqlite3
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))

from hives import HKCC, HKCR, HKCU, HKLM, HKU  # noqa: E402
from machine import Machine, ansi_text, fold, units  # noqa: E402

HIVES = {"HKEY_CLASSES_ROOT": HKCR, "HKEY_CURRENT_CONFIG": HKCC, "HKEY_CURRENT_USER": HKCU,
         "HKEY_LOCAL_MACHINE": HKLM, "HKEY_USERS": HKU}
TYPE_NAMES = ["NONE", "STRING", "EXPAND_STRING", "BINARY", "DWORD", "BIG_ENDIAN", "LINK", "MULTI_STRING",
              "RESOURCE_LIST", "FULL_RESOURCE_DESCRIPTOR", "RESOURCE_REQUIREMENTS_LIST", "QWORD"]
OWN_SETTINGS = r"Software\VB and VBA Program Settings\Sandrel"

FILE_COLUMNS = ("Version", "Size", "Attributes", "Date")
REGISTRY_NEW = ("Hive", "Branch", "ValueName", "Value", "ValueType")
FILES_NEW = ("PathName", "FileName", *FILE_COLUMNS)
INI_NEW = ("PathName", "FileName", "Section", "Parameter", "Value")
TABLES = {
    "tblNewRegistryEnteries": REGISTRY_NEW,
    "tblChangedRegistryEnteries": ("Hive", "Branch", "ValueName", "OldValue", "NewValue", "OldValueType",
                                   "NewValueType"),
    "tblDeletedRegistryEnteries": REGISTRY_NEW,
    "tblNewFiles": FILES_NEW,
    "tblChangedFiles": ("PathName", "FileName", "OldDate", "OldVersion", "OldSize", "OldAttributes",
                        "NewDate", "NewVersion", "NewSize", "NewAttributes"),
    "tblDeletedFiles": FILES_NEW,
    "tblNewIniEnteries": INI_NEW,
    "tblChangedIniEnteries": ("PathName", "FileName", "Section", "Parameter", "OldValue", "NewValue"),
    "tblDeletedIniEnteries": INI_NEW,
}
STATISTICS = ("Registry - New", "Registry - Changed", "Registry - Deleted", "Files - New",
              "Files - Changed", "Files - Deleted", "INI Entries - New", "INI Entries - Changed",
              "INI Entries - Deleted")

_ASCII = str.maketrans({c: c.lower() for c in "ABCDEFGHIJKLMNOPQRSTUVWXYZ"})


def nocase(text):
    """The form in which the store compares texts: only ASCII letters lose their case."""
    return text if text is None else text.translate(_ASCII)


def stored(text):
    """A text as the store holds it."""
    return text.replace("\0", "\u2400")


# ---- values of the registry as text -----------------------------------------------------------------


def signed(number):
    return number - 2**32 if number & 0x80000000 else number


def swapped(number):
    """The pairs of hexadecimal digits in the opposite order; digits aren't padded."""
    digits = f"{number:X}"
    return int("".join(digits[i:i + 2] for i in (6, 4, 2, 0)), 16)


def hexadecimal(data):
    return " ".join(f"{byte:02X}" for byte in data)


def terminated(data):
    """String data with its terminating zero; data of size 0 gets none. Half a character at the end gets
    its other half."""
    data += bytes(len(data) % 2)
    return data if not data or data.endswith(b"\0\0") else data + b"\0\0"


def ansi_bytes(text):
    out = b""
    for sign in text:
        if ord(sign) in (0x81, 0x8D, 0x8F, 0x90, 0x9D):
            out += bytes([ord(sign)])
            continue
        try:
            out += sign.encode("cp1252")
        except UnicodeEncodeError:
            out += sign.encode("utf-8", "surrogatepass")
    return out


def value_text(kind, data):
    """The text that stands in the field Value."""
    if kind == 0:
        return stored(ansi_text(data))
    if kind in (1, 2):
        return stored(terminated(data).decode("utf-16-le", "surrogatepass")[:-1])
    if kind in (4, 5):
        if len(data) > 4:
            return ""  # doesn't fit the number that it is read into
        number = int.from_bytes(data, "little")
        return str(signed(number if kind == 4 else swapped(number)))
    if kind == 7:
        return hexadecimal(ansi_bytes(terminated(data).decode("utf-16-le", "surrogatepass")))
    return hexadecimal(data)


# ---- a snapshot -------------------------------------------------------------------------------------


class Shared:
    """The names that both snapshots share; the first spelling met is the one that stays."""

    def __init__(self):
        self.paths, self.keys, self.sections = {}, {}, {}


class Snapshot:
    """The rows of one snapshot, by the keys under which the two are compared."""

    def __init__(self, machine, options, shared):
        self.files = {}     # (path, name) -> (FileName, Date, Version, Size, Attributes)
        self.values = {}    # (hive, branch, name) -> (ValueName, Value, ValueType)
        self.entries = {}   # (path, file, section, parameter, number) -> (Parameter, Value)
        self.shared = shared
        if not options.no_disk:
            for folder in options.scan_folder:
                self._scan_files(machine, folder, options)
        if not options.no_registry:
            for name in options.hives:
                self._scan_hive(machine.registry, HIVES[name])

    def _scan_files(self, machine, top, options):
        for folder, files, ini_files in machine.walk(top, options.version_info, not options.no_size,
                                                     not options.no_attributes):
            path = nocase(folder)
            self.shared.paths.setdefault(path, folder)
            for name, *details in files or [("", None, None, None, None)]:
                self.files[path, nocase(name)] = (name, *details)
            for name, sections in ini_files:
                for section, lines in sections:
                    self._add_section(path, nocase(name), section, lines)

    def _add_section(self, path, file, section, lines):
        if not section or units(section) > 255:
            return
        key = (path, file, nocase(stored(section)))
        self.shared.sections.setdefault(key, stored(section))
        numbers = collections.Counter()
        for line in lines:
            parameter, equals, value = line.partition("=")
            if not equals or units(parameter) > 255:
                continue
            parameter = stored(parameter)
            number = numbers[nocase(parameter)]
            numbers[nocase(parameter)] += 1
            self.entries[(*key, nocase(parameter), number)] = (parameter, stored(value))

    def _scan_hive(self, registry, hive):
        for branch, node in registry.walk(hive):
            if units(branch) > 32767:
                continue
            branch = stored(branch)
            self.shared.keys.setdefault((hive, nocase(branch)), branch)
            for name, kind, data in node.values:
                if units(name) <= 16383:
                    key = (hive, nocase(branch), nocase(stored(name)))
                    self.values.setdefault(key, (stored(name), value_text(kind, data), signed(kind)))


# ---- exclusions -------------------------------------------------------------------------------------


def with_backslash(folder):
    return folder if folder.endswith("\\") else folder + "\\"


def default_exclusions(machine, home):
    """The exclusions of a list that nobody has edited."""
    entries = []
    own = machine.windows_path(home) if home else None
    if own:
        entries.append(with_backslash(own))
    temp, tmp = machine.variable("temp"), machine.variable("tmp")
    if temp:
        entries.append(with_backslash(temp))
    if tmp and tmp.lower() != temp.lower():
        entries.append(with_backslash(tmp))
    swap_file = machine.windows_folder() + "\\WIN386.SWP"
    host = machine.host_path(swap_file)
    if host and os.path.isfile(host):
        entries.append(swap_file)
    return entries


def matches(name, pattern):
    """The product's own wildcard rule."""
    name_base, _, name_extension = name.lower().partition(".")
    base, _, extension = pattern.lower().partition(".")
    name_extension, extension = name_extension.strip(" "), extension.strip(" ")
    pairs = []
    if "*" in base:
        start = base.index("*") - 1
        name_base, base = name_base[start:], base[start:]
    pairs.append((name_base, base))
    if extension:
        if "*" in extension:
            start = extension.index("*") - 1
            name_extension, extension = name_extension[start:], extension[start:]
        pairs.append((name_extension, extension))
    return all(len(a) == len(b) and all(y == "?" or x == y for x, y in zip(a, b)) for a, b in pairs)


def exclude_files(entries, shared, snapshots):
    for entry in entries:
        folder, _, last = entry.rpartition("\\")
        folder = fold(folder + "\\")
        if not last:
            doomed = {p for p, spelled in shared.paths.items() if fold(spelled).startswith(folder)}
            test = lambda row: True  # noqa: E731
        else:
            doomed = {p for p, spelled in shared.paths.items() if fold(spelled) == folder}
            if last == "*.*":
                test = lambda row: True  # noqa: E731
            elif "*" in last or "?" in last:
                test = lambda row: matches(row[0], last)  # noqa: E731
            else:
                test = lambda row: fold(row[0]) == fold(last)  # noqa: E731
        for snapshot in snapshots:
            for key in [k for k, row in snapshot.files.items() if k[0] in doomed and test(row)]:
                del snapshot.files[key]
        if not last:
            for path in doomed:
                del shared.paths[path]


def exclude_entries(snapshots):
    """The entries of INI files that no snapshot has any more go with their files."""
    for snapshot in snapshots:
        for key in [k for k in snapshot.entries if not any(k[:2] in s.files for s in snapshots)]:
            del snapshot.entries[key]


def exclude_keys(machine, shared, snapshots):
    branches = [(HKCU, OWN_SETTINGS)]
    branches += [(HKU, f"{name.name}\\{OWN_SETTINGS}")
                 for name in machine.registry.roots[HKU].subkeys.values()]
    branches += [(HKLM, r"System\Clone")]
    branches += [(HKLM, rf"System\ControlSet{number:03}") for number in range(1, 7)]
    for hive, branch in branches:
        start = nocase(branch)
        for snapshot in snapshots:
            for key in [k for k in snapshot.values if k[0] == hive and k[1].startswith(start)]:
                del snapshot.values[key]
        for key in [k for k in shared.keys if k[0] == hive and k[1].startswith(start)]:
            del shared.keys[key]


# ---- the nine comparisons ---------------------------------------------------------------------------


def differ(old, new):
    """What <> says: nothing for a NULL, no regard to case."""
    if old is None or new is None:
        return False
    return nocase(old) != nocase(new) if isinstance(old, str) else old != new


def compare(before, after, shared):
    """The rows of the nine tables, as lists of tuples in the order of TABLES."""
    rows = {table: [] for table in TABLES}

    for target, one, other in (("tblNewRegistryEnteries", after, before),
                               ("tblDeletedRegistryEnteries", before, after)):
        for key, value in one.values.items():
            if key not in other.values:
                rows[target].append((key[0], shared.keys.get(key[:2]), *value))
    for key, (name, old, old_type) in before.values.items():
        if key in after.values and key[:2] in shared.keys:
            _, new, new_type = after.values[key]
            if differ(old, new) or differ(old_type, new_type):
                rows["tblChangedRegistryEnteries"].append(
                    (key[0], shared.keys[key[:2]], name, old, new, old_type, new_type))

    for target, one, other in (("tblNewFiles", after, before), ("tblDeletedFiles", before, after)):
        for key, (name, date, version, size, bits) in one.files.items():
            if key not in other.files and (target == "tblDeletedFiles" or key[0] in shared.paths):
                rows[target].append((shared.paths.get(key[0]), name, version, size, bits, date))
    for key, (name, *old) in before.files.items():
        if key in after.files and key[0] in shared.paths:
            new = after.files[key][1:]
            if any(differ(a, b) for a, b in zip(old, new)):
                rows["tblChangedFiles"].append((shared.paths[key[0]], name, *old, *new))

    # New and deleted entries are told apart by section and parameter, whatever their number.
    for target, one, other in (("tblNewIniEnteries", after, before),
                               ("tblDeletedIniEnteries", before, after)):
        known = {key[:4] for key in other.entries}
        for key, (parameter, value) in one.entries.items():
            if key[:4] not in known:
                file = one.files.get(key[:2])
                rows[target].append((shared.paths.get(key[0]) if file else None, file and file[0],
                                     shared.sections[key[:3]], parameter, value))
    for key, (parameter, old) in before.entries.items():
        if key in after.entries and key[:2] in before.files and key[0] in shared.paths:
            new = after.entries[key][1]
            if differ(old, new):
                rows["tblChangedIniEnteries"].append(
                    (shared.paths[key[0]], before.files[key[:2]][0], shared.sections[key[:3]], parameter,
                     old, new))
    return rows


def without_duplicates(rows):
    """For each table with a key the rows that may stand for it: the first one met stays there, and
    which that is the comparison leaves open."""
    width = {"Registry": 3, "Files": 2, "ChangedIni": 4}
    choices = {}
    for table, table_rows in rows.items():
        columns = next((n for part, n in width.items() if part in table), None)
        grouped = collections.OrderedDict()
        for number, row in enumerate(table_rows):
            key = tuple(map(nocase_any, row[:columns])) if columns else number
            grouped.setdefault(key, []).append(row)
        choices[table] = list(grouped.values())
    return choices


def nocase_any(item):
    return nocase(item) if isinstance(item, str) else item


# ---- the checks -------------------------------------------------------------------------------------


class Report:
    def __init__(self):
        self.faults = 0

    def fault(self, text):
        self.faults += 1
        print(text)

    def equal(self, what, expected, found):
        if expected != found:
            self.fault(f"{what}:\n  expected {expected!r}\n  found    {found!r}")

    def rows(self, table, columns, choices, found):
        """Compares rows without regard to their order; each of `choices` is the list of rows of
        which one has to be there."""
        left = collections.Counter(found)
        missing = []
        for candidates in choices:
            row = next((r for r in candidates if left[r] > 0), None)
            if row is None:
                missing.append(candidates[0])
            else:
                left[row] -= 1
        surplus = list(left.elements())
        for row in missing:
            # Rows of the same name side by side tell which column is wrong.
            near = next((r for r in surplus
                         if tuple(map(nocase_any, r[:3])) == tuple(map(nocase_any, row[:3]))
                         or "Files" in table and r[:2] == row[:2]), None)
            if near is None:
                self.fault(f"{table}: missing {dict(zip(columns, row))!r}")
                continue
            surplus.remove(near)
            wrong = ", ".join(f"{c} is {f!r} instead of {e!r}"
                              for c, e, f in zip(columns, row, near) if e != f)
            self.fault(f"{table}: {row[:3]!r}: {wrong}")
        for row in surplus:
            self.fault(f"{table}: should not be there: {dict(zip(columns, row))!r}")


def expected_statistics(machine, options, rows):
    """The rows of tblStats; None stands for a text that isn't compared."""
    disk, registry = not options.no_disk, not options.no_registry
    yes = lambda on: "Yes" if on else "No"  # noqa: E731
    stats = [(name, str(len(rows[table]))) for name, table in zip(STATISTICS, TABLES)]
    stats += [(" ", ""), ("Disk Scan Settings", ""), ("    Folders Scanned", "" if disk else "None")]
    if disk:
        stats += [(" " * 8 + folder.rstrip("\\"), "") for folder in options.scan_folder]
        stats += [("    Version Info Included", yes(options.version_info)),
                  ("    Size Info Included", yes(not options.no_size)),
                  ("    Attribute Info Included", yes(not options.no_attributes)),
                  ("    Hidden Folders Included", "Yes")]
    stats += [(" ", ""), ("Registry Scan Settings", ""), ("    Hives Scanned", "" if registry else "None")]
    if registry:
        stats += [(" " * 8 + name, yes(name in options.hives)) for name in HIVES]
    stats += [(" ", ""), ("File Exclude Settings", ""),
              ("    Files / Folders Excluded", "None" if options.no_exclude else "")]
    if not options.no_exclude:
        entries = options.exclude or default_exclusions(machine, options.home)
        stats += [(" " * 8 + entry, "Folder Tree" if entry.endswith("\\") else "File(s)")
                  for entry in entries]
    # What is left out is listed in between.
    stats += [(" ", ""), ("Left Out Of The Snapshots", ""), ("    Differences Not Compared", "0")]
    return stats


def type_names(rows):
    """The types that have a name, and those that the differences have."""
    types = {number for table in rows for row in rows[table] if "Registry" in table
             for number in (row[5:7] if "Changed" in table else row[4:5])}
    named = dict(enumerate(TYPE_NAMES))
    return sorted((number, named.get(number) or f"TYPE 0x{number & 0xFFFFFFFF:08X}")
                  for number in types | set(named))


def check_analysis(report, database, rows, statistics):
    for table, columns in TABLES.items():
        names = [row[1] for row in database.execute(f'PRAGMA table_info("{table}")')]
        report.equal(f"{table}: columns", list(columns), names)
        if names == list(columns):
            report.rows(table, columns, without_duplicates(rows)[table],
                        database.execute(f'SELECT * FROM "{table}"').fetchall())
    report.equal("tblHives", sorted((number, name) for name, number in HIVES.items()),
                 sorted(database.execute("SELECT Hive, Name FROM tblHives").fetchall()))
    report.equal("tblValueTypes", type_names(rows),
                 sorted(database.execute("SELECT ValueType, Name FROM tblValueTypes").fetchall()))
    found = [(d.rstrip("\\") if d.startswith(" " * 8) and v == "" else d, v)
             for d, v in database.execute("SELECT Description, Value FROM tblStats ORDER BY id")]
    heads = [i for i, row in enumerate(found) if row[0] == "Left Out Of The Snapshots"]
    if heads:
        found = found[:heads[0] + 1] + found[-1:]
    for i in range(max(len(statistics), len(found))):
        pair = [rows[i] if i < len(rows) else None for rows in (statistics, found)]
        report.equal(f"tblStats row {i + 1}", *pair)


def check_snapshots(report, database, before, after, shared):
    """Compares the stored rows of both snapshots, the excluded ones gone."""
    one = lambda rows: [[row] for row in rows]  # noqa: E731
    report.rows("tblPaths", ("PathName",), one((p,) for p in shared.paths.values()),
                database.execute("SELECT PathName FROM tblPaths").fetchall())
    report.rows("tblRegKey", ("Hive", "Branch"), one((k[0], b) for k, b in shared.keys.items()),
                database.execute("SELECT Hive, Branch FROM tblRegKey").fetchall())
    for number, snapshot in (("", before), ("2", after)):
        report.rows(f"tblFiles{number}", ("PathName", "FileName", "Date", "Version", "Size", "Attributes"),
                    one((shared.paths.get(k[0]), *row) for k, row in snapshot.files.items()),
                    database.execute(
                        "SELECT PathName, FileName, Date, Version, Size, Attributes "
                        f"FROM tblFiles{number} f LEFT JOIN tblPaths p ON f.PathId = p.Id").fetchall())
        report.rows(f"tblRegValue{number}", ("Hive", "Branch", "ValueName", "Value", "ValueType"),
                    one((k[0], shared.keys.get(k[:2]), *row) for k, row in snapshot.values.items()),
                    database.execute(
                        "SELECT Hive, Branch, ValueName, Value, ValueType "
                        f"FROM tblRegValue{number} v LEFT JOIN tblRegKey k ON v.KeyId = k.Id").fetchall())
        report.rows(f"tblIniValues{number}", ("Section", "Parameter", "Occurance", "Value"),
                    one((shared.sections[k[:3]], row[0], k[4], row[1])
                        for k, row in snapshot.entries.items()),
                    database.execute(
                        "SELECT Section, Parameter, Occurance, Value "
                        f"FROM tblIniValues{number} v LEFT JOIN tblIniSections s ON v.SectionId = s.Id")
                    .fetchall())


def open_database(path):
    """A database, read only. A text may hold half of a surrogate pair, as a registry can."""
    database = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
    database.text_factory = lambda data: data.decode("utf-8", "surrogatepass")
    return database


def parse_arguments():
    parser = argparse.ArgumentParser(description="Checks an analysis against two copies of a machine.")
    parser.add_argument("before")
    parser.add_argument("after")
    parser.add_argument("analysis")
    parser.add_argument("--database", help="the working database, to compare both snapshots too")
    parser.add_argument("--home", help="the program's own folder, excluded where a drive holds it")
    parser.add_argument("--machine", help="where the machine stood when it was scanned; its path decides "
                        "whether a drive holds the program's folder (default: AFTER)")
    parser.add_argument("--scan-folder", action="append", help="a folder of the list (default C:\\)")
    parser.add_argument("--version-info", action="store_true")
    parser.add_argument("--no-size", action="store_true")
    parser.add_argument("--no-attributes", action="store_true")
    parser.add_argument("--no-disk", action="store_true")
    parser.add_argument("--no-registry", action="store_true")
    parser.add_argument("--hive", action="append", dest="hives", choices=HIVES,
                        help="a hive that is scanned (default: all but HKEY_CLASSES_ROOT)")
    parser.add_argument("--exclude", action="append", help="an entry of the list, instead of the defaults")
    parser.add_argument("--no-exclude", action="store_true")
    options = parser.parse_args()
    options.scan_folder = options.scan_folder or ["C:\\"]
    options.hives = options.hives or [name for name in HIVES if name != "HKEY_CLASSES_ROOT"]
    return options


def main():
    options = parse_arguments()
    sys.stdout.reconfigure(errors="backslashreplace")
    for path in (options.analysis, options.database):
        if path and not os.path.isfile(path):
            sys.exit(f"expected.py: {path} doesn't exist")
    before_machine, after_machine = Machine(options.before), Machine(options.after)
    shared = Shared()
    before = Snapshot(before_machine, options, shared)
    after = Snapshot(after_machine, options, shared)
    exclude_keys(after_machine, shared, (before, after))
    scanned = Machine(options.machine) if options.machine else after_machine
    if not options.no_exclude:
        exclude_files(options.exclude or default_exclusions(scanned, options.home), shared,
                      (before, after))
        exclude_entries((before, after))
    rows = compare(before, after, shared)

    report = Report()
    check_analysis(report, open_database(options.analysis), rows,
                   expected_statistics(scanned, options, rows))
    if options.database:
        check_snapshots(report, open_database(options.database), before, after, shared)
    counts = ", ".join(f"{name} {len(rows[table])}" for name, table in zip(STATISTICS, TABLES))
    print(f"{counts}; {len(before.files)} and {len(after.files)} files, "
          f"{len(before.values)} and {len(after.values)} values: "
          f"{report.faults or 'no'} differences from the analysis")
    sys.exit(1 if report.faults else 0)


if __name__ == "__main__":
    main()
