#!/usr/bin/env python3
"""Compiles the C and C++ examples of the documentation as a reader would compile them.

    check_examples.py --docs DIR --include DIR --import-library FILE --compiler GCC --resource-compiler WINDRES --work DIR

Every code fence marked c, cpp, h or rc is a whole file and begins with its name in a comment: /* open.c */. The files of one
document go into one folder. Each .c and .cpp file is compiled with warnings as errors; one with a main function or WinMain is
linked with the import library, and with the .rc file of the same name when there is one. Ends with 1 when anything
fails.
"""

import argparse
import pathlib
import re
import shutil
import subprocess
import sys

FENCE = re.compile(r"^```(c|cpp|h|rc)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
NAME = re.compile(r"/\* ([a-z0-9_]+\.(?:c|cpp|h|rc)) \*/\n")
PROGRAM = re.compile(r"^int (?:WINAPI )?(?:main|WinMain)\(", re.MULTILINE)
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]
STANDARDS = {".c": ["-std=c99"], ".cpp": ["-x", "c++", "-std=c++11"]}


def extract(document, folder):
    """Writes the document's examples into a new folder and returns the .c and .cpp files; raises ValueError for a nameless one."""
    text = document.read_text(encoding="utf-8")
    written = []
    for fence in FENCE.finditer(text):
        name = NAME.match(fence[2])
        line = text.count("\n", 0, fence.start()) + 1
        if not name:
            raise ValueError(f"{document.name}:{line}: the example does not begin with its file's name")
        path = folder / name[1]
        if path.exists():
            raise ValueError(f"{document.name}:{line}: {name[1]} stands in the document twice")
        folder.mkdir(parents=True, exist_ok=True)
        path.write_text(fence[2], encoding="utf-8")
        written.append(path)
    return [path for path in written if path.suffix in STANDARDS]


def commands(source, options):
    """The commands that build one example."""
    compile_only = [options.compiler, *WARNINGS, *STANDARDS[source.suffix], "-I", options.include]
    compile_only += ["-c", source, "-o", source.with_suffix(".o")]
    if not PROGRAM.search(source.read_text(encoding="utf-8")):
        return [compile_only]
    objects, script = [source.with_suffix(".o")], source.with_suffix(".rc")
    result = [compile_only]
    if script.exists():
        objects.append(source.with_suffix(".res.o"))
        result.append([options.resource_compiler, "-c", "65001", "-I", source.parent, script, "-o", objects[-1]])
    link = [options.compiler, *objects, options.import_library, "-o", source.with_suffix(".exe")]
    return [*result, link]


def build(source, options):
    for command in commands(source, options):
        run = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False)
        if run.returncode != 0:
            messages = (run.stdout + run.stderr).splitlines()
            print(f"{source.parent.name}.md: {source.name} fails", *messages[:20], sep="\n")
            return False
    return True


def main():
    parser = argparse.ArgumentParser()
    for name in ("docs", "include", "import-library", "compiler", "resource-compiler", "work"):
        parser.add_argument(f"--{name}", required=True)
    options = parser.parse_args()
    work = pathlib.Path(options.work)
    shutil.rmtree(work, ignore_errors=True)
    sources = []
    for document in sorted(pathlib.Path(options.docs).glob("*.md")):
        try:
            sources += extract(document, work / document.stem)
        except ValueError as problem:
            sys.exit(str(problem))
    good = [build(source, options) for source in sources]
    print(f"{sum(good)} of {len(good)} examples build")
    return 0 if good and all(good) else 1


if __name__ == "__main__":
    sys.exit(main())
