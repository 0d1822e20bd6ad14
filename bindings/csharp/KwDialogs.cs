// kwdialogs for C#: file and directory selection, table-driven dialogs (P/Invoke declarations of kwdialogs.h).
//
// Build the host for the width of the DLL: -platform:x86 or -platform:x64, never "Any CPU". All text is 8-bit text in
// the system's ANSI code page, and text fields are pointers, because the library keeps and fills the host's own buffers:
// Marshal.StringToHGlobalAnsi makes one. Buffers, tables and delegates stay where they are until the call has returned
// (unmanaged memory or a pinned GCHandle; a delegate in a variable and GC.KeepAlive behind the call). All calls are
// made on the host's user-interface thread; the dialogs are modal and return on that thread.
//
//     IntPtr path = Marshal.AllocHGlobal(KwDialogs.KW_MAX_PATH);
//     Marshal.WriteByte(path, 0);  // no initial name
//     IntPtr filter = Marshal.StringToHGlobalAnsi("Drawings\0*.dxf\0All files\0*.*\0");
//     var request = new KwDialogs.SelectRequest {
//         filter = filter, filterIndex = 1, fileBuffer = path, fileBufferSize = KwDialogs.KW_MAX_PATH };
//     int mode = KwDialogs.KW_FILE_OPEN | KwDialogs.KW_FILE_PREVIEW;
//     if (KwDialogs.kwSelectFileName(IntPtr.Zero, mode, 1, ref request) != 0)
//         Console.WriteLine(Marshal.PtrToStringAnsi(path));
//     Marshal.FreeHGlobal(filter);
//     Marshal.FreeHGlobal(path);
//
// Names are those of kwdialogs.h.
using System;
using System.Runtime.InteropServices;

public static class KwDialogs
{
    const string Dll = "kwdialogs.dll";

    public const int KW_MAX_PATH = 260;

    // ---- File selection

    // modeBits of kwSelectFileName; other bits are ignored.
    public const int KW_FILE_OPEN = 1;       // open an existing file; without it: choose a name to save under
    public const int KW_FILE_OVERWRITE = 16; // save only: do not ask before an existing file is chosen
    public const int KW_FILE_PREVIEW = 32;   // Explorer-style dialog only: show the preview pane
    public const int KW_FILE_FULL_DXF = 64;  // with KW_FILE_PREVIEW: all of a DXF, for more time and memory (guide.md)

    // SelectRequest.sortOptions. Keys have a fixed priority: name, extension, size, date.
    public const uint KW_SORT_NAME = 0x01;
    public const uint KW_SORT_EXTENSION = 0x02;
    public const uint KW_SORT_SIZE = 0x04;
    public const uint KW_SORT_DATE = 0x08;
    public const uint KW_SORT_DESCENDING = 0x80; // no check box sets it; it reverses the whole order

    // SelectRequest.displayOptions: the columns behind each file name.
    public const uint KW_SHOW_SIZE = 0x01;
    public const uint KW_SHOW_DATE = 0x02;
    public const uint KW_SHOW_TIME = 0x04;
    public const uint KW_SHOW_COMMENT = 0x08;

    // What kwSelectFileName asks and answers: 36 bytes, in 64 bits 64. The host owns every buffer.
    [StructLayout(LayoutKind.Sequential, Pack = 8)]
    public struct SelectRequest
    {
        public IntPtr title;        // dialog caption; zero: the system's own
        public IntPtr filter;       // pairs of description and pattern, each ended by \0, the list by one more \0
        public IntPtr initialDir;   // starting directory, may be relative; zero: the system's choice
        public uint filterIndex;    // in/out: 1-based filter pair; written back after OK and after Cancel
        public IntPtr fileBuffer;   // in: initial file name; out: the chosen full path
        public uint fileBufferSize; // capacity of fileBuffer in bytes, terminator included
        public IntPtr defaultExt;   // extension without its dot for a name typed without one; may be zero
        public uint sortOptions;    // in/out, classic dialog only: KW_SORT_...
        public uint displayOptions; // in/out, classic dialog only: KW_SHOW_...
    }

    // Lets the user choose one file.
    //   owner         window that owns the modal dialog; may be zero
    //   modeBits      KW_FILE_...
    //   keepLongName  0: the chosen path is turned into its short (8.3) form in place; else it stays long
    // Returns non-zero when the user confirmed a file, 0 on Cancel and when the dialog could not be shown; fileBuffer
    // then holds whatever the dialog left in it.
    [DllImport(Dll, ExactSpelling = true, CallingConvention = CallingConvention.StdCall)]
    public static extern uint kwSelectFileName(IntPtr owner, int modeBits, int keepLongName, ref SelectRequest request);

    // Reads or sets the dialog style of the whole process: 0 (at start) for the Explorer style wherever the shell has
    // it, any positive value for the classic style. A negative mode changes nothing. Returns the style before the call.
    [DllImport(Dll, ExactSpelling = true, CallingConvention = CallingConvention.StdCall)]
    public static extern int kwSelectFileGUI(int mode);

    // Lets the user choose a directory.
    //   owner      window that owns the modal dialog; may be zero
    //   title      dialog caption; null: "DirSelection" in the folder tree, the system's own in the classic style
    //   directory  at least KW_MAX_PATH bytes; in: starting directory, out: the chosen one, both with a trailing
    //              backslash (the folder tree selects the parent of one that has none); a virtual folder gives the
    //              shell's name for it. Null, or a text that does not end within KW_MAX_PATH, gives 0
    // Returns non-zero when a directory was chosen; otherwise 0 with the buffer unchanged.
    // The spelling "Directry" belongs to the exported name.
    [DllImport(Dll, ExactSpelling = true, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Ansi,
               BestFitMapping = false)]
    public static extern uint kwSelectDirectryName(IntPtr owner, string title, [In, Out] byte[] directory);

    // ---- Dialogs run from a table

    // DialogItem.type, bits 0-7: what the control is.
    public const uint KW_KIND_EDIT = 1;   // text: printf format of the value; zero: the value type's own
    public const uint KW_KIND_CHECK = 2;  // text: label; checked when the value is not 0
    public const uint KW_KIND_RADIO = 3;  // text: maximum labels, each ended by \0; value: index of the checked one
    public const uint KW_KIND_COMBO = 4;  // text: maximum entries, each ended by \0; value: index of the selected one
    public const uint KW_KIND_LABEL = 5;  // text: label; with KW_VALUE_TEXT the printf format of the host's string
    public const uint KW_KIND_BUTTON = 6; // text: label
    public const uint KW_KIND_PAGES = 7;  // minimum: page shown first; maximum: number of pages

    // DialogItem.type, bits 8-15: the type of the host's variable.
    public const uint KW_VALUE_NONE = 0x000;
    public const uint KW_VALUE_TEXT = 0x100; // maximum bytes, terminator included; kinds edit and label
    public const uint KW_VALUE_INT8 = 0x200; // sbyte; kinds edit, check, radio and combo, as for all numbers
    public const uint KW_VALUE_INT16 = 0x300;
    public const uint KW_VALUE_INT32 = 0x400;
    public const uint KW_VALUE_FLOAT = 0x500;
    public const uint KW_VALUE_DOUBLE = 0x600;
    public const uint KW_VALUE_ACCEPT = 0x700;  // push button that ends the dialog with its own id after write-back
    public const uint KW_VALUE_DISMISS = 0x800; // push button that ends the dialog with its own id without write-back
    public const uint KW_VALUE_PAGES = 0x900;   // array of PageDescriptor; kind pages only

    // DialogItem.type, bits 16-23: flags.
    public const uint KW_FLAG_DISABLED = 0x10000;  // disabled when the dialog opens (radio: all buttons)
    public const uint KW_FLAG_HIDDEN = 0x20000;    // hidden when the dialog opens (radio: all buttons)
    public const uint KW_FLAG_SPIN = 0x40000;      // edit fields: attach a spin button that steps by one
    public const uint KW_FLAG_KEEP_PAGE = 0x80000; // pages: on acceptance store the page shown into minimum

    // One control, or one radio group, of a dialog: 40 bytes in both widths. The host owns the table; it stays alive and writable
    // until the dialog has ended. A range is active only when minimum and maximum differ.
    [StructLayout(LayoutKind.Sequential, Pack = 8)]
    public struct DialogItem
    {
        public int controlId;  // radio group: id of the first button, the others follow it
        public uint type;      // kind | value type | flags
        public IntPtr value;   // the host's variable; text: its buffer; pages: its PageDescriptor array
        public double minimum; // lower bound of the value
        public double maximum; // upper bound; text: buffer size in bytes; radio, combo, pages: count
        public IntPtr text;    // by kind, see above; may be zero
    }

    // Sees every message before the library does; non-zero: handled. The window's DWLP_USER slot belongs to the
    // library. No exception may leave it.
    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    public delegate IntPtr DialogCallback(IntPtr dialog, uint message, IntPtr wParam, IntPtr lParam);

    // One page of a page container: 20 bytes, in 64 bits 40.
    [StructLayout(LayoutKind.Sequential, Pack = 8)]
    public struct PageDescriptor
    {
        public IntPtr instance;     // module that holds the page's template; zero: the dialog's own module
        public IntPtr templateName; // the template's name, or (IntPtr) its number
        public IntPtr callback;     // Marshal.GetFunctionPointerForDelegate of a DialogCallback; may be zero
        public int itemCount;
        public IntPtr items;        // array of DialogItem
    }

    // Runs a modal dialog from a template and a table.
    //   instance, templateName  module and template (its name, or (IntPtr) its number)
    //   owner                   owner window; may be zero
    //   items, itemCount        the table; null with 0 for none
    //   callback                may be null
    // Returns 1 after IDOK, 0 after IDCANCEL or when an item could not be set up, the control id of the accept or
    // dismiss button that ended the dialog, or -1 when the dialog could not be created.
    [DllImport(Dll, ExactSpelling = true, CallingConvention = CallingConvention.StdCall)]
    public static extern int kwDlgBoxCtrl(IntPtr instance, IntPtr templateName, IntPtr owner,
                                          [In, Out] DialogItem[] items, int itemCount, DialogCallback callback);
    [DllImport(Dll, ExactSpelling = true, CallingConvention = CallingConvention.StdCall, CharSet = CharSet.Ansi,
               BestFitMapping = false)]
    public static extern int kwDlgBoxCtrl(IntPtr instance, string templateName, IntPtr owner,
                                          [In, Out] DialogItem[] items, int itemCount, DialogCallback callback);
}
