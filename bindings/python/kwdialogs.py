"""kwdialogs for Python (ctypes): file and directory selection, table-driven dialogs.

A 32-bit Python takes the DLL of the package's x86, a 64-bit one that of x64. All text is bytes in the system's ANSI code page: ansi("...") makes them.
Keep every record, buffer and callback in a variable until the call has returned. All calls are made on the thread of
the host's user interface; the dialogs are modal and return on that thread.

    import ctypes, kwdialogs
    library = kwdialogs.load(r"C:\\cad\\kwdialogs.dll")
    path = ctypes.create_string_buffer(kwdialogs.KW_MAX_PATH)
    request = kwdialogs.SelectRequest(
        title=b"Open drawing", filter=b"Drawings\\0*.dxf\\0All files\\0*.*\\0", filterIndex=1,
        fileBuffer=path, fileBufferSize=len(path))
    if library.kwSelectFileName(None, kwdialogs.KW_FILE_OPEN | kwdialogs.KW_FILE_PREVIEW, 1, request):
        print(path.value.decode("mbcs"))

Names are those of kwdialogs.h. On other systems the module can be imported to look at its records, not to call.
"""
import ctypes
from ctypes import POINTER, c_char, c_char_p, c_double, c_int32, c_size_t, c_ssize_t, c_uint32, c_void_p

KW_MAX_PATH = 260

# ---- File selection

# modeBits of kwSelectFileName; other bits are ignored.
KW_FILE_OPEN = 1  # open an existing file; without it: choose a name to save under
KW_FILE_OVERWRITE = 16  # save only: do not ask before an existing file is chosen
KW_FILE_PREVIEW = 32  # Explorer-style dialog only: show the preview pane
KW_FILE_FULL_DXF = 64  # with KW_FILE_PREVIEW: all of a DXF, for more time and memory (guide.md)

# SelectRequest.sortOptions. Keys have a fixed priority: name, extension, size, date.
KW_SORT_NAME = 0x01
KW_SORT_EXTENSION = 0x02
KW_SORT_SIZE = 0x04
KW_SORT_DATE = 0x08
KW_SORT_DESCENDING = 0x80  # no check box sets it; it reverses the whole order

# SelectRequest.displayOptions: the columns behind each file name.
KW_SHOW_SIZE = 0x01
KW_SHOW_DATE = 0x02
KW_SHOW_TIME = 0x04
KW_SHOW_COMMENT = 0x08


class SelectRequest(ctypes.Structure):
    """What kwSelectFileName asks and answers: 36 bytes, in 64 bits 64. A field that is left out is null or 0."""

    _layout_ = "ms"
    _pack_ = 8
    _fields_ = [
        ("title", c_char_p),  # dialog caption; None: the system's own
        ("filter", c_char_p),  # pairs of description and pattern, each ended by \0; Python adds the last one
        ("initialDir", c_char_p),  # starting directory, may be relative; None: the system's choice
        ("filterIndex", c_uint32),  # in/out: 1-based filter pair; written back after OK and after Cancel
        ("fileBuffer", POINTER(c_char)),  # a create_string_buffer; in: initial file name; out: the chosen full path
        ("fileBufferSize", c_uint32),  # capacity of fileBuffer in bytes, terminator included
        ("defaultExt", c_char_p),  # extension without its dot for a name typed without one; may be None
        ("sortOptions", c_uint32),  # in/out, classic dialog only: KW_SORT_...
        ("displayOptions", c_uint32),  # in/out, classic dialog only: KW_SHOW_...
    ]


# ---- Dialogs run from a table

# DialogItem.type, bits 0-7: what the control is.
KW_KIND_EDIT = 1  # text: printf format of the value; None: the value type's own
KW_KIND_CHECK = 2  # text: label; checked when the value is not 0
KW_KIND_RADIO = 3  # text: maximum labels, each ended by \0; the value is the index of the checked button
KW_KIND_COMBO = 4  # text: maximum entries, each ended by \0; the value is the index of the selected one
KW_KIND_LABEL = 5  # text: label; with KW_VALUE_TEXT the printf format of the host's string
KW_KIND_BUTTON = 6  # text: label
KW_KIND_PAGES = 7  # minimum: page shown first; maximum: number of pages

# DialogItem.type, bits 8-15: the type of the host's variable.
KW_VALUE_NONE = 0x000
KW_VALUE_TEXT = 0x100  # create_string_buffer(maximum), terminator included; kinds edit and label
KW_VALUE_INT8 = 0x200  # c_int8; kinds edit, check, radio and combo, as for all numbers
KW_VALUE_INT16 = 0x300  # c_int16
KW_VALUE_INT32 = 0x400  # c_int32
KW_VALUE_FLOAT = 0x500  # c_float
KW_VALUE_DOUBLE = 0x600  # c_double
KW_VALUE_ACCEPT = 0x700  # push button that ends the dialog with its own id after write-back
KW_VALUE_DISMISS = 0x800  # push button that ends the dialog with its own id without write-back
KW_VALUE_PAGES = 0x900  # array of PageDescriptor; kind pages only

# DialogItem.type, bits 16-23: flags.
KW_FLAG_DISABLED = 0x10000  # disabled when the dialog opens (radio: all buttons)
KW_FLAG_HIDDEN = 0x20000  # hidden when the dialog opens (radio: all buttons)
KW_FLAG_SPIN = 0x40000  # edit fields: attach a spin button that steps by one
KW_FLAG_KEEP_PAGE = 0x80000  # pages: on acceptance store the index of the page shown into minimum

# Sees every message before the library does: (dialog, message, wParam, lParam) -> non-zero when handled. The window's
# DWLP_USER slot belongs to the library. An exception inside is printed and counts as 0.
DialogCallback = getattr(ctypes, "WINFUNCTYPE", ctypes.CFUNCTYPE)(c_ssize_t, c_void_p, c_uint32, c_size_t, c_ssize_t)
NO_CALLBACK = DialogCallback()  # ctypes takes no None in its place


class DialogItem(ctypes.Structure):
    """One control, or one radio group, of a dialog: 40 bytes in both widths. A range is active only when minimum and maximum differ.

    The table, the variables and the texts stay alive and writable until the dialog has ended.
    """

    _layout_ = "ms"
    _pack_ = 8
    _fields_ = [
        ("controlId", c_int32),  # radio group: id of the first button, the others follow it
        ("type", c_uint32),  # kind | value type | flags
        ("value", c_void_p),  # pointer_to(variable); text: its buffer; pages: the PageDescriptor array
        ("minimum", c_double),  # lower bound of the value
        ("maximum", c_double),  # upper bound; text: buffer size in bytes; radio, combo, pages: count
        ("text", c_char_p),  # by kind, see above; may be None
    ]


class PageDescriptor(ctypes.Structure):
    """One page of a page container: 20 bytes, in 64 bits 40."""

    _layout_ = "ms"
    _pack_ = 8
    _fields_ = [
        ("instance", c_void_p),  # module that holds the page's template; None: the dialog's own module
        ("templateName", c_void_p),  # the template's number, or pointer_to(create_string_buffer(name))
        ("callback", DialogCallback),  # may be left out
        ("itemCount", c_int32),
        ("items", POINTER(DialogItem)),  # an array of them
    ]


# ---- The exports

# name: (result, parameters)
PROTOTYPES = {
    # (owner, modeBits, keepLongName, request): lets the user choose one file.
    #   owner         window handle that owns the modal dialog; may be None
    #   modeBits      KW_FILE_...
    #   keepLongName  0: the chosen path is turned into its short (8.3) form in place; else it stays long
    #   request       a SelectRequest; None gives 0
    # Returns non-zero when the user confirmed a file, 0 on Cancel and when the dialog could not be shown; fileBuffer
    # then holds whatever the dialog left in it.
    "kwSelectFileName": (c_uint32, [c_void_p, c_int32, c_int32, POINTER(SelectRequest)]),
    # (mode): reads or sets the dialog style of the whole process: 0 (at start) for the Explorer style wherever the
    # shell has it, any positive value for the classic style. A negative mode changes nothing. Returns the style before
    # the call.
    "kwSelectFileGUI": (c_int32, [c_int32]),
    # (owner, title, directory): lets the user choose a directory.
    #   title      dialog caption; None: "DirSelection" in the folder tree, the system's own in the classic style
    #   directory  create_string_buffer(start, KW_MAX_PATH); in: starting directory, out: the chosen one, both with a
    #              trailing backslash (the folder tree selects the parent of one that has none); a virtual folder gives
    #              the shell's name for it. None, or a text that does not end within KW_MAX_PATH, gives 0
    # Returns non-zero when a directory was chosen; otherwise 0 with the buffer unchanged.
    # The spelling "Directry" belongs to the exported name.
    "kwSelectDirectryName": (c_uint32, [c_void_p, c_char_p, POINTER(c_char)]),
    # (instance, templateName, owner, items, itemCount, callback): runs a modal dialog from a template and a table.
    #   instance, templateName  module handle, and the template's number or its name as bytes
    #   owner                   owner window; may be None
    #   items, itemCount        an array of DialogItem; None with 0 for none
    #   callback                a DialogCallback, or NO_CALLBACK
    # Returns 1 after IDOK, 0 after IDCANCEL or when an item could not be set up, the control id of the accept or
    # dismiss button that ended the dialog, or -1 when the dialog could not be created.
    "kwDlgBoxCtrl": (c_int32, [c_void_p, c_void_p, c_void_p, POINTER(DialogItem), c_int32, DialogCallback]),
}


def load(path="kwdialogs.dll"):
    """Loads the library and returns it with its four exports declared.

    Give a full path: Python looks for bare names beside python.exe and in the system's folders only. OSError when the
    library cannot be loaded; when it has the other width than this Python, the message says so.
    """
    if not hasattr(ctypes, "WinDLL"):
        raise OSError("kwdialogs.dll needs Python on Windows")
    try:
        library = ctypes.WinDLL(path)
    except OSError as error:
        if getattr(error, "winerror", 0) != 193:  # ERROR_BAD_EXE_FORMAT
            raise
        bits = 8 * ctypes.sizeof(c_void_p)
        raise OSError(f"{path} is not for this Python of {bits} bits: take the DLL of x86 for 32, of x64 for 64") from error
    for name, (result, parameters) in PROTOTYPES.items():
        export = getattr(library, name)
        export.restype, export.argtypes = result, parameters
    return library


def ansi(text):
    """The text in the system's ANSI code page; UnicodeEncodeError for a character that it lacks."""
    return text.encode("mbcs")


def pointer_to(variable):
    """A pointer for DialogItem.value, which also keeps the variable (a ctypes object) alive."""
    return ctypes.cast(ctypes.pointer(variable), c_void_p)
