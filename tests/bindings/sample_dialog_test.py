"""The Python sample with a stand-in for the library, which takes the place of the user: it reads the tables as the
library does, by the pointers in them, and writes other values through them.

    sample_dialog_test.py BINDINGS_FOLDER DEMO_RESOURCE_H
"""
import codecs
import ctypes
import gc
import re
import sys
import unittest
from ctypes import POINTER, cast
from pathlib import Path

bindings, resource_header = Path(sys.argv.pop(1)), Path(sys.argv.pop(1))
sys.dont_write_bytecode = True
sys.path.insert(0, str(bindings / "python"))
try:
    codecs.lookup("mbcs")  # Windows' name for the ANSI code page
except LookupError:
    codecs.register(lambda name: codecs.lookup("cp932") if name == "mbcs" else None)

import kwdialogs as kw  # noqa: E402
import sample_dialog as sample  # noqa: E402

NUMBERS = {
    kw.KW_VALUE_INT8: ctypes.c_int8,
    kw.KW_VALUE_INT16: ctypes.c_int16,
    kw.KW_VALUE_INT32: ctypes.c_int32,
    kw.KW_VALUE_FLOAT: ctypes.c_float,
    kw.KW_VALUE_DOUBLE: ctypes.c_double,
}


def number(item):
    kind = NUMBERS.get(item.type & 0xFF00)
    return kind and cast(item.value, POINTER(kind))[0]


class Library:
    """Answers every number with one more, the part with "X", and ends with `result`."""

    def __init__(self, result):
        self.result, self.ids, self.numbers, self.texts = result, [], [], []

    def kwDlgBoxCtrl(self, module, template, owner, items, count, callback):
        gc.collect()
        self.ids.append(template)
        self.visit(items, count)
        return self.result

    def visit(self, items, count):
        for item in items[:count]:
            self.ids.append(item.controlId)
            value_type = item.type & 0xFF00
            if item.text:
                self.texts.append(item.text)
            if value_type in NUMBERS:
                self.numbers.append(number(item))
                cast(item.value, POINTER(NUMBERS[value_type]))[0] += 1
            elif item.controlId == sample.IDC_PART:
                self.texts.append(ctypes.string_at(item.value))
                ctypes.memmove(item.value, b"X", 2)
            elif value_type == kw.KW_VALUE_PAGES:
                for page in cast(item.value, POINTER(kw.PageDescriptor))[: int(item.maximum)]:
                    assert not page.instance and not page.callback
                    self.ids.append(page.templateName)
                    self.visit(page.items, page.itemCount)
                item.minimum = 1


class SampleDialog(unittest.TestCase):
    def test_values_travel_both_ways(self):
        library, parameters = Library(1), sample.Parameters()
        result, page = sample.edit_parameters(library, 1, parameters)
        self.assertEqual(library.numbers, [120, 0.15, 2.5, 29.5, 1, 1, 0, 12, 4, 80, 1])
        self.assertEqual(library.texts[:5], [b"MP-2040-01", b"Machine: %s", b"%.2lf", b"%.4lf", b"Roughing"])
        self.assertEqual(
            sample.describe(result, page, parameters).splitlines(),
            [
                "taken over, page 2 shown last",
                "part X: 121 m/min, feed 1.15 mm/rev, depth 3.500 mm, angle 30.5000 degrees",
                "Finishing, coolant on",
                "Ball-nose end mill, 13.000 mm, 5 teeth, length 81.0 mm, carbide",
            ],
        )

    def test_ids_are_the_demos(self):
        library = Library(-1)
        result, page = sample.edit_parameters(library, 1, sample.Parameters())
        self.assertEqual(sample.describe(result, page, sample.Parameters()), "the dialog could not be created")
        ids = dict(re.findall(r"#define (ID[DC]_\w+) (\d+)", resource_header.read_text(encoding="utf-8")))
        named = {name: value for name, value in vars(sample).items() if name.startswith(("IDD_", "IDC_"))}
        self.assertEqual(named, {name: int(ids[name]) for name in named})
        self.assertEqual(sorted(library.ids), sorted(named.values()))

    def test_lists_end_each_entry(self):
        self.assertEqual(sample.entries(["End mill", "図"]), "End mill\0図\0".encode("mbcs"))

    @unittest.skipIf(sys.platform == "win32", "the library can be loaded here")
    def test_other_systems_are_told(self):
        with self.assertRaisesRegex(OSError, "on Windows"):
            kw.load()


unittest.main()
