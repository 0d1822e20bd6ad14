"""Compares the bindings with the C header: constants, records and the exports' parameters.

    layout.py generate HEADER OUTPUT.cpp                      a program that prints the header's table
    layout.py python|pascal|csharp HEADER BINDING COMMAND...  compares; COMMAND runs that program

The header is the one source of truth: its names are read from its text, its numbers are what the compiler makes of it.
A line of the table is "constant NAME VALUE", "size RECORD BYTES", "field RECORD.NAME OFFSET BYTES" or
"parameters EXPORT COUNT". The compilers at hand are 64-bit ones, so for a 32-bit table the pointers in the bindings' records
are first replaced by 32-bit integers, which stand and count in a record as 32-bit pointers do.
"""
import ctypes
import re
import runpy
import shutil
import subprocess
import sys
import tempfile
import types
from pathlib import Path


class Names:
    """What the header declares."""

    def __init__(self, header):
        text = re.sub(r"/\*.*?\*/", "", header.read_text(encoding="ascii"), flags=re.S)
        self.constants = re.findall(r"^#define (KW_(?!VERSION)\w+) ", text, re.M)
        self.records = {
            name: re.findall(r"(\w+);", body)
            for body, name in re.findall(r"typedef struct \w+ \{(.*?)\} (\w+);", text, re.S)
        }
        self.exports = re.findall(r"\bWINAPI (kw\w+)\(", text)
        if not (self.constants and self.records and self.exports):
            sys.exit(f"nothing recognised in {header}")

    def fields(self):
        return [(record, field) for record, fields in self.records.items() for field in fields]


def generate(header, output):
    names = Names(header)
    lines = ['#include "kwdialogs.h"', "#include <cstddef>", "#include <cstdio>", ""]
    lines += ["template <typename Result, typename... Parameters>"]
    lines += ["static int Count(Result(WINAPI**)(Parameters...)) {"]
    lines += ["    return static_cast<int>(sizeof...(Parameters));", "}", ""]
    lines += ["int main() {"]
    lines += [f'    std::printf("constant {c} %d\\n", {c});' for c in names.constants]
    lines += [f'    std::printf("size {r} %d\\n", static_cast<int>(sizeof({r})));' for r in names.records]
    lines += [
        f'    std::printf("field {r}.{f} %d %d\\n", static_cast<int>(offsetof({r}, {f})),\n'
        f"                static_cast<int>(sizeof({r}::{f})));"
        for r, f in names.fields()
    ]
    lines += [
        f'    std::printf("parameters {e} %d\\n", Count(static_cast<decltype(&{e})*>(nullptr)));' for e in names.exports
    ]
    output.write_text("\n".join(lines + ["}", ""]), encoding="ascii")


def compile_and_run(compiler, sources, commands):
    """Writes the sources to a folder of their own, and gives what the last command prints (FOLDER is its name)."""
    if not shutil.which(compiler):
        print(f"skipped: needs {compiler}")
        sys.exit(0)
    with tempfile.TemporaryDirectory() as folder:
        for name, text in sources.items():
            Path(folder, name).write_text(text, encoding="utf-8")
        for command in commands:
            command = [word.replace("FOLDER", folder) for word in command]
            run = subprocess.run(
                command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False
            )
            if run.returncode:
                sys.exit(f"{' '.join(command)}\n{run.stdout}")
        return run.stdout


# ---- Python


def with_32_bit_pointers(kind):
    """The ctypes type with each pointer as a 32-bit integer."""
    if issubclass(kind, ctypes.Structure):
        fields = [(name, with_32_bit_pointers(field)) for name, field in kind._fields_]
        return type(kind.__name__, (ctypes.Structure,), {"_layout_": "ms", "_pack_": kind._pack_, "_fields_": fields})
    is_number = issubclass(kind, ctypes._SimpleCData) and kind._type_ not in "zZPO"
    return kind if is_number and kind not in (ctypes.c_size_t, ctypes.c_ssize_t) else ctypes.c_uint32


def python_table(names, binding, narrow):
    module = types.SimpleNamespace(**runpy.run_path(binding))
    lines = [f"constant {c} {getattr(module, c)}" for c in names.constants]
    for record, fields in names.records.items():
        model = getattr(module, record)
        model = with_32_bit_pointers(model) if narrow else model
        lines.append(f"size {record} {ctypes.sizeof(model)}")
        lines += [f"field {record}.{f} {getattr(model, f).offset} {getattr(model, f).size}" for f in fields]
    lines += [f"parameters {e} {len(module.PROTOTYPES[e][1])}" for e in names.exports]
    return "\n".join(lines)


# ---- Pascal

WINDOWS_UNIT = """unit Windows;  { the types that the binding takes from there, as Windows has them }
interface
type HWND = PtrUInt; HINST = PtrUInt; UINT = LongWord; DWORD = LongWord;
  WPARAM = PtrInt; LPARAM = PtrInt; LRESULT = PtrInt;
implementation
end.
"""


def pascal_table(names, binding, narrow):
    unit = binding.read_text(encoding="ascii")
    exports = {
        name: sum(1 + part.split(":")[0].count(",") for part in parameters.split(";"))
        for name, parameters in re.findall(r"^function (kw\w+)\(([^)]*)\):[^;]*;\s+stdcall;", unit, re.M)
    }
    pointer = re.compile(r"(?<=: )(Pointer|P[A-Z]\w+|TDialogCallback|HINST)(?=;)")
    if narrow:
        unit = re.sub(r"= record.*?end;", lambda record: pointer.sub("LongWord", record[0]), unit, flags=re.S)
    unit = re.sub(r"external KwDialogsDll name '\w+';", "begin Result := 0 end;", unit)  # there is no DLL to link
    own_names = {"type": "itemType"}
    lines = ["program Table;", "uses kwdialogs;", "begin"]
    lines += [f"  WriteLn('constant {c} ', {c});" for c in names.constants]
    lines += [f"  WriteLn('size {r} ', SizeOf(T{r}));" for r in names.records]
    lines += [
        f"  WriteLn('field {r}.{f} ', PtrUInt(@T{r}(nil^).{own}), ' ', SizeOf(T{r}(nil^).{own}));"
        for r, f in names.fields()
        for own in [own_names.get(f, f)]
    ]
    lines += [f"  WriteLn('parameters {e} {exports.get(e)}');" for e in names.exports]
    sources = {"windows.pas": WINDOWS_UNIT, "kwdialogs.pas": unit, "table.pas": "\n".join(lines + ["end."])}
    return compile_and_run("fpc", sources, [["fpc", "-vew", "-Sew", "table.pas"], ["FOLDER/table"]])


# ---- C#


def csharp_table(names, binding, narrow):
    code = binding.read_text(encoding="ascii")
    if narrow:
        code = re.sub(r"public struct.*?\n    }", lambda record: record[0].replace("IntPtr", "uint"), code, flags=re.S)
    lines = ["using System; using System.Reflection; using System.Runtime.InteropServices;"]
    lines += ["static class Table {"]
    lines += ["    static void Size(Type record) {"]
    lines += ['        Console.WriteLine("size {0} {1}", record.Name, Marshal.SizeOf(record));', "    }"]
    lines += ["    static void Field(Type record, string name) {"]
    lines += ["        Console.WriteLine(\"field {0}.{1} {2} {3}\", record.Name, name, Marshal.OffsetOf(record, name),"]
    lines += ["            Marshal.SizeOf(record.GetField(name).FieldType));"]
    lines += ["    }"]
    lines += ["    static void Main() {"]
    lines += [f'        Console.WriteLine("constant {c} {{0}}", KwDialogs.{c});' for c in names.constants]
    lines += [f"        Size(typeof(KwDialogs.{r}));" for r in names.records]
    lines += [f'        Field(typeof(KwDialogs.{r}), "{f}");' for r, f in names.fields()]
    lines += ["        BindingFlags exports = BindingFlags.Public | BindingFlags.Static;"]
    lines += ["        foreach (MethodInfo export in typeof(KwDialogs).GetMethods(exports))"]
    lines += ['            Console.WriteLine("parameters {0} {1}", export.Name, export.GetParameters().Length);']
    lines += ["    }", "}"]
    sources = {"KwDialogs.cs": code, "Table.cs": "\n".join(lines)}
    compiler = ["mcs", "-warnaserror", "-out:table.exe", "Table.cs", "KwDialogs.cs"]
    return compile_and_run("mcs", sources, [compiler, ["mono", "table.exe"]])


TABLES = {"python": python_table, "pascal": pascal_table, "csharp": csharp_table}


def main():
    if sys.argv[1] == "generate":
        generate(Path(sys.argv[2]), Path(sys.argv[3]))
        return
    language, header, binding, command = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3]), sys.argv[4:]
    names = Names(header)
    run = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True)
    wanted = {line.strip() for line in run.stdout.splitlines()}
    table = TABLES[language](names, binding, narrow="field SelectRequest.title 0 4" in wanted)
    found = {line.strip() for line in table.splitlines() if line.strip()}
    mentioned = set(re.findall(r"\bKW_[A-Z0-9_]*[A-Z0-9]\b(?!_?\.\.\.)", binding.read_text(encoding="ascii")))
    errors = [f"header:  {line}" for line in sorted(wanted - found)]
    errors += [f"binding: {line}" for line in sorted(found - wanted)]
    errors += [f"the header has no {name}" for name in sorted(mentioned - set(names.constants))]
    print("\n".join(errors) or f"{len(wanted)} lines of the table agree")
    sys.exit(1 if errors else 0)


main()
