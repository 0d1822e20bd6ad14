"""Opens a dialog of two pages, which kwdialogs runs from tables, and prints what the user entered.

    py -3 sample_dialog.py [FOLDER]

FOLDER holds kwdialogs.dll and kwdemo.exe of the width of this Python; without it they are the package's. The dialog's
templates are those of kwdemo.exe; a host brings its own in its resources.
"""
import ctypes
import os
import sys
from ctypes import c_double, c_float, c_int8, c_int16, c_int32

import kwdialogs as kw
from kwdialogs import DialogItem, PageDescriptor, pointer_to

# Ids of kwdemo.exe's templates and of their controls.
IDD_PARAMETERS, IDD_CUTTING_PAGE, IDD_TOOL_PAGE = 1100, 1101, 1102
IDC_PART, IDC_MACHINE, IDC_PAGES, IDC_SIMULATE, IDC_SKIP = 1110, 1111, 1112, 1113, 1114
IDC_SPEED, IDC_FEED, IDC_DEPTH, IDC_ANGLE, IDC_FINISH, IDC_COOLANT = 1120, 1121, 1122, 1123, 1124, 1127
IDC_TOOL_KIND, IDC_DIAMETER, IDC_TEETH, IDC_LENGTH, IDC_CARBIDE = 1130, 1131, 1132, 1133, 1134

FINISHES = ["Roughing", "Semi-finishing", "Finishing"]
TOOLS = ["End mill", "Ball-nose end mill", "Drill", "Reamer"]


class Parameters:
    """The variables that the dialog edits: ctypes objects of the sizes that the tables name."""

    def __init__(self):
        self.part = ctypes.create_string_buffer(b"MP-2040-01", 24)
        self.speed = c_int16(120)  # m/min
        self.feed = c_double(0.15)  # mm/rev
        self.depth = c_double(2.5)  # mm
        self.angle = c_double(29.5)  # degrees
        self.finish = c_int32(1)  # index into FINISHES
        self.coolant = c_int8(1)
        self.tool = c_int32(0)  # index into TOOLS
        self.diameter = c_double(12)  # mm
        self.teeth = c_int8(4)
        self.length = c_float(80)  # mm
        self.carbide = c_int32(1)


def table(*rows):
    return (DialogItem * len(rows))(*(DialogItem(*row) for row in rows))


def entries(names):
    """The labels of a radio group or a list: one after another, each with a terminator."""
    return kw.ansi("".join(name + "\0" for name in names))


def edit_parameters(library, module, p):
    """Lets the user edit the parameters; returns what kwDlgBoxCtrl returns, and the page that was shown last."""
    stepped = kw.KW_KIND_EDIT | kw.KW_FLAG_SPIN
    cutting = table(
        (IDC_SPEED, stepped | kw.KW_VALUE_INT16, pointer_to(p.speed), 5, 400, None),
        (IDC_FEED, kw.KW_KIND_EDIT | kw.KW_VALUE_DOUBLE, pointer_to(p.feed), 0.01, 3, b"%.2lf"),
        (IDC_DEPTH, stepped | kw.KW_VALUE_DOUBLE, pointer_to(p.depth), 0, 25, None),
        (IDC_ANGLE, kw.KW_KIND_EDIT | kw.KW_VALUE_DOUBLE, pointer_to(p.angle), 0, 90, b"%.4lf"),
        (IDC_FINISH, kw.KW_KIND_RADIO | kw.KW_VALUE_INT32, pointer_to(p.finish), 0, len(FINISHES), entries(FINISHES)),
        (IDC_COOLANT, kw.KW_KIND_CHECK | kw.KW_VALUE_INT8, pointer_to(p.coolant), 0, 0, b"&Coolant"),
    )
    tool = table(
        (IDC_TOOL_KIND, kw.KW_KIND_COMBO | kw.KW_VALUE_INT32, pointer_to(p.tool), 0, len(TOOLS), entries(TOOLS)),
        (IDC_DIAMETER, stepped | kw.KW_VALUE_DOUBLE, pointer_to(p.diameter), 0.1, 200, None),
        (IDC_TEETH, stepped | kw.KW_VALUE_INT8, pointer_to(p.teeth), 1, 12, None),
        (IDC_LENGTH, stepped | kw.KW_VALUE_FLOAT, pointer_to(p.length), 10, 400, b"%.1lf"),
        (IDC_CARBIDE, kw.KW_KIND_CHECK | kw.KW_VALUE_INT32, pointer_to(p.carbide), 0, 0, b"Ca&rbide"),
    )
    pages = (PageDescriptor * 2)(  # fields that are left out are null: the dialog's module, no callback
        PageDescriptor(templateName=IDD_CUTTING_PAGE, itemCount=len(cutting), items=cutting),
        PageDescriptor(templateName=IDD_TOOL_PAGE, itemCount=len(tool), items=tool),
    )
    paged = kw.KW_KIND_PAGES | kw.KW_VALUE_PAGES
    machine = ctypes.create_string_buffer(b"MC-5A")
    items = table(
        (IDC_PART, kw.KW_KIND_EDIT | kw.KW_VALUE_TEXT, pointer_to(p.part), 0, len(p.part), None),
        (IDC_MACHINE, kw.KW_KIND_LABEL | kw.KW_VALUE_TEXT, pointer_to(machine), 0, 0, b"Machine: %s"),
        (IDC_PAGES, paged | kw.KW_FLAG_KEEP_PAGE, pointer_to(pages), 0, len(pages), None),
        (IDC_SIMULATE, kw.KW_KIND_BUTTON | kw.KW_VALUE_ACCEPT, None, 0, 0, None),
        (IDC_SKIP, kw.KW_KIND_BUTTON | kw.KW_VALUE_DISMISS, None, 0, 0, None),
    )
    result = library.kwDlgBoxCtrl(module, IDD_PARAMETERS, None, items, len(items), kw.NO_CALLBACK)
    return result, int(items[2].minimum)


def describe(result, page, p):
    ends = {1: "taken over", IDC_SIMULATE: "taken over for a simulation", IDC_SKIP: "skipped", 0: "cancelled"}
    if result not in ends:
        return "the dialog could not be created"
    return (
        f"{ends[result]}, page {page + 1} shown last\n"
        f"part {p.part.value.decode('mbcs')}: {p.speed.value} m/min, feed {p.feed.value:.2f} mm/rev, "
        f"depth {p.depth.value:.3f} mm, angle {p.angle.value:.4f} degrees\n"
        f"{FINISHES[p.finish.value]}, coolant {'on' if p.coolant.value else 'off'}\n"
        f"{TOOLS[p.tool.value]}, {p.diameter.value:.3f} mm, {p.teeth.value} teeth, length {p.length.value:.1f} mm, "
        f"{'carbide' if p.carbide.value else 'high-speed steel'}"
    )


def load_resources(path):
    """The module handle of a program that is opened for its resources only; OSError when it cannot be."""
    load = ctypes.WinDLL("kernel32", use_last_error=True).LoadLibraryExW
    load.restype, load.argtypes = ctypes.c_void_p, [ctypes.c_wchar_p, ctypes.c_void_p, ctypes.c_uint32]
    module = load(path, None, 0x22)  # LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE
    if not module:
        raise ctypes.WinError(ctypes.get_last_error())
    return module


def main():
    if len(sys.argv) > 2 or "-h" in sys.argv or "--help" in sys.argv:
        sys.exit(__doc__)
    width = "x64" if ctypes.sizeof(ctypes.c_void_p) == 8 else "x86"
    packaged = os.path.join(os.path.dirname(__file__), "..", "..", width, "bin")
    folder = os.path.abspath(sys.argv[1] if len(sys.argv) == 2 else packaged)
    try:
        library = kw.load(os.path.join(folder, "kwdialogs.dll"))
        module = load_resources(os.path.join(folder, "kwdemo.exe"))
    except OSError as error:
        sys.exit(str(error))
    parameters = Parameters()
    result, page = edit_parameters(library, module, parameters)
    print(describe(result, page, parameters))


if __name__ == "__main__":
    main()
