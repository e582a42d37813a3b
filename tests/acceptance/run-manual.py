#!/usr/bin/env python3
"""Types the examples of the manual and compares what they print with what the manual says.

    run-manual.py [SANDREL-CLI]

Links lead somewhere. All "console" blocks of all chapters run in their order in one shell, in a fresh home folder with these
sources as ~/sandrel. A block of a script whose second line is "# NAME: ..." is the file NAME. In what is
printed "…" stands for any rest of a line, dates of today for one another, /home/you for the home folder.
"""

import datetime
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
END = "end-of-this-example"


def anchors(chapter):
    """The places that links can name, as code hosts make them of headings."""
    headings = re.findall(r"^#+ (.*)$", FENCE.sub("", chapter.read_text(encoding="utf-8")), re.MULTILINE)
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}


def broken_links(chapter):
    text = FENCE.sub("", chapter.read_text(encoding="utf-8"))
    for link in re.findall(r"\]\(([^)]*)\)", text):
        name, _, anchor = link.partition("#")
        target = chapter.parent / name if name else chapter
        if not target.is_file() or (anchor and anchor not in anchors(target)):
            yield f"{chapter.name}: the link {link} leads nowhere"


def examples(block):
    """The commands of a console block, each with the lines that it is to print."""
    found = []
    for line in block.splitlines():
        if line.startswith("$ "):
            found.append((line[2:], []))
        elif line.startswith("> ") and not found[-1][1]:
            found[-1] = (found[-1][0] + "\n" + line[2:], [])
        else:
            found[-1][1].append(line)
    return found


class Shell:
    """One bash for all examples, so that variables last."""

    def __init__(self, cli, home):
        self._home = home
        (home / "sandrel").symlink_to(REPOSITORY)
        environment = {"HOME": str(home), "PATH": f"{cli.parent}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8",
                       "TZ": "UTC", "SANDREL_HOME": str(home / ".local/share/sandrel")}
        self._bash = subprocess.Popen(["bash"], cwd=home, env=environment, text=True, stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def type(self, command):
        self._bash.stdin.write(f"{command}\necho {END} $?; (exit $_)\n")
        self._bash.stdin.flush()
        printed = []
        for line in self._bash.stdout:
            if line.startswith(END):
                return printed, int(line.split()[1])
            printed.append(line.rstrip("\n").replace(str(self._home), "/home/you"))
        sys.exit(f"the shell ended with: {command}")


def is_like(said, printed):
    def pattern(line):
        dated = re.sub(r"\b20[2-9]\d-\d\d-\d\d \d\d:\d\d:\d\d", "DATE", line)
        return ".*".join(re.escape(part) for part in dated.split("…"))

    today = datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d")
    now = [re.sub(rf"\b{today} \d\d:\d\d:\d\d", "DATE", line.rstrip()) for line in printed]
    return len(said) == len(now) and all(re.fullmatch(pattern(a.rstrip()), b) for a, b in zip(said, now))


def main():
    cli = sys.argv[1] if len(sys.argv) > 1 else REPOSITORY / "build/release/src/sandrel-cli"
    work = Path(tempfile.mkdtemp())
    try:
        shell = Shell(Path(cli).resolve(), work)
        typed = faults = 0
        for chapter in sorted((REPOSITORY / "docs/manual").glob("*.md")):
            for broken in broken_links(chapter):
                faults += 1
                print(broken)
            for language, block in FENCE.findall(chapter.read_text(encoding="utf-8")):
                name = re.match(r"#!.*\n# ([\w-]+): ", block)
                if name:
                    (work / name[1]).write_text(block, encoding="utf-8")
                    (work / name[1]).chmod(0o755)
                for command, said in examples(block) if language == "console" else []:
                    printed, status = shell.type(command)
                    typed += 1
                    tells_failure = any(line.startswith("sandrel-cli: ") for line in said)
                    if is_like(said, printed) and (status == 0 or tells_failure):
                        continue
                    faults += 1
                    print(f"{chapter.name}: $ {command}\nstatus {status}, printed:", *printed, sep="\n")
    finally:
        shutil.rmtree(work)
    print(f"{typed} examples typed, {faults} faults")
    return 1 if faults or not typed else 0


if __name__ == "__main__":
    sys.exit(main())
