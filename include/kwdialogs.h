/* kwdialogs.h - user-interface services for CAD/CAM hosts: file and directory selection, table-driven dialogs.
 *
 * Plain C (C89 and later) and C++. Windows of 32 and of 64 bits, __stdcall, undecorated export names. A host takes the
 * DLL of its own width.
 *
 * All text is 8-bit text in the system's ANSI code page; Shift_JIS double-byte characters are never split.
 * All paths live in buffers of KW_MAX_PATH bytes, terminator included; longer paths are not supported.
 * All calls are made on the host's user-interface thread; the dialogs are modal and return on that thread. Two
 * threads must not be inside the library at once. Nothing is ever thrown, and no call changes the process's current
 * directory as the host sees it.
 */
#ifndef KWDIALOGS_H
#define KWDIALOGS_H

/* The version of this header; the DLL carries its own as a version resource. To ask for one while compiling:
 * #if KW_VERSION < KW_MAKE_VERSION(0, 1, 0) */
#define KW_VERSION_MAJOR 0
#define KW_VERSION_MINOR 1
#define KW_VERSION_PATCH 0
#define KW_MAKE_VERSION(major, minor, patch) ((major)*10000 + (minor)*100 + (patch))
#define KW_VERSION KW_MAKE_VERSION(KW_VERSION_MAJOR, KW_VERSION_MINOR, KW_VERSION_PATCH)

#define KW_MAX_PATH 260

#ifndef RC_INVOKED /* what follows is nothing that a resource script can hold */

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- File selection ------------------------------------------------------------------------------------------ */

/* modeBits of kwSelectFileName; other bits are ignored. */
#define KW_FILE_OPEN 1       /* open an existing file; without it: choose a name to save under */
#define KW_FILE_OVERWRITE 16 /* save only: do not ask before an existing file is chosen */
#define KW_FILE_PREVIEW 32   /* Explorer-style dialog only: show the preview pane */
#define KW_FILE_FULL_DXF 64  /* with KW_FILE_PREVIEW: all of a DXF, for more time and memory (guide.md) */

/* SelectRequest::sortOptions. Keys have a fixed priority: name, extension, size, date. */
#define KW_SORT_NAME 0x01
#define KW_SORT_EXTENSION 0x02
#define KW_SORT_SIZE 0x04
#define KW_SORT_DATE 0x08
#define KW_SORT_DESCENDING 0x80 /* no check box sets it; it reverses the whole order */

/* SelectRequest::displayOptions: the columns behind each file name. */
#define KW_SHOW_SIZE 0x01
#define KW_SHOW_DATE 0x02
#define KW_SHOW_TIME 0x04
#define KW_SHOW_COMMENT 0x08

#pragma pack(push, 8)

/* What kwSelectFileName asks and answers: nine 32-bit words on 32-bit Windows, 64 bytes on 64-bit Windows. The host
 * owns every buffer. */
typedef struct SelectRequest {
    const char* title;      /* dialog caption; null: the system's own */
    const char* filter;     /* pairs of description and pattern, each ended by NUL, the list by one more NUL */
    const char* initialDir; /* starting directory, may be relative; null: the system's choice or the current one */
    DWORD filterIndex;      /* in/out: 1-based filter pair; written back after OK and after Cancel */
    char* fileBuffer;       /* in: initial file name; out: the chosen full path */
    DWORD fileBufferSize;   /* capacity of fileBuffer in bytes, terminator included */
    const char* defaultExt; /* without its dot, for a name typed without one (Explorer style: to save); may be null */
    DWORD sortOptions;      /* in/out, classic dialog only: KW_SORT_... */
    DWORD displayOptions;   /* in/out, classic dialog only: KW_SHOW_... */
} SelectRequest;

/* Lets the user choose one file.
 *   owner         window that owns the modal dialog; may be null
 *   modeBits      KW_FILE_...
 *   keepLongName  0: the chosen path is turned into its short (8.3) form in place where it has one (a file that does
 *                 not exist yet has none); else it stays long
 *   request       see above; null, or one without a buffer, gives 0 and shows nothing
 * Returns non-zero when the user confirmed a file, 0 on Cancel and when the dialog could not be shown; fileBuffer
 * then holds whatever the dialog left in it. */
unsigned int WINAPI kwSelectFileName(HWND owner, int modeBits, int keepLongName, SelectRequest* request);

/* Reads or sets the dialog style of the whole process: 0 (at start) for the Explorer style wherever the shell has it,
 * any positive value for the classic style. A negative mode changes nothing. Returns the style before the call. */
int WINAPI kwSelectFileGUI(int mode);

/* Lets the user choose a directory.
 *   owner      window that owns the modal dialog; may be null
 *   title      dialog caption; null: "DirSelection" in the folder tree, the system's own in the classic style
 *   directory  at least KW_MAX_PATH bytes; in: starting directory, out: the chosen one, both with a trailing backslash
 *              (the folder tree selects the parent of one that has none); a virtual folder gives the shell's name for
 *              it. Null, or a text that does not end within KW_MAX_PATH, gives 0
 * Returns non-zero when a directory was chosen; otherwise 0 with the buffer unchanged.
 * The spelling "Directry" belongs to the exported name. */
unsigned int WINAPI kwSelectDirectryName(HWND owner, const char* title, char* directory);

/* ---- Dialogs run from a table -------------------------------------------------------------------------------- */

/* DialogItem::type, bits 0-7: what the control is. */
#define KW_KIND_EDIT 1   /* text: printf format of the value; null: the value type's own */
#define KW_KIND_CHECK 2  /* text: label; checked when the value is not 0 */
#define KW_KIND_RADIO 3  /* text: maximum labels one after another; the value is the index of the checked button */
#define KW_KIND_COMBO 4  /* text: maximum entries one after another; the value is the index of the selected one */
#define KW_KIND_LABEL 5  /* text: label; with KW_VALUE_TEXT the printf format of the host's string */
#define KW_KIND_BUTTON 6 /* text: label */
#define KW_KIND_PAGES 7  /* minimum: page shown first; maximum: number of pages */

/* DialogItem::type, bits 8-15: the type of the host's variable. */
#define KW_VALUE_NONE 0x000
#define KW_VALUE_TEXT 0x100 /* char[maximum], terminator included; kinds edit and label (a label only reads it) */
#define KW_VALUE_INT8 0x200 /* signed; kinds edit, check, radio and combo, as for all numbers */
#define KW_VALUE_INT16 0x300
#define KW_VALUE_INT32 0x400
#define KW_VALUE_FLOAT 0x500
#define KW_VALUE_DOUBLE 0x600
#define KW_VALUE_ACCEPT 0x700  /* push button that ends the dialog, not a page, with its own id, written back */
#define KW_VALUE_DISMISS 0x800 /* the same, not written back */
#define KW_VALUE_PAGES 0x900   /* array of PageDescriptor; kind pages only */

/* DialogItem::type, bits 16-23: flags. */
#define KW_FLAG_DISABLED 0x10000  /* disabled when the dialog opens (radio: all buttons) */
#define KW_FLAG_HIDDEN 0x20000    /* hidden when the dialog opens (radio: all buttons) */
#define KW_FLAG_SPIN 0x40000      /* edit fields: attach a spin button that steps by one */
#define KW_FLAG_KEEP_PAGE 0x80000 /* pages: on acceptance store the index of the page shown into minimum */

/* One control, or one radio group, of a dialog. The host owns the table; it stays alive and writable until the dialog
 * has ended. A range is active only when minimum and maximum differ. */
typedef struct DialogItem {
    int controlId;    /* radio group: id of the first button, the others follow it */
    DWORD type;       /* kind | value type | flags */
    void* value;      /* the host's variable; text: its buffer; pages: its PageDescriptor array */
    double minimum;   /* lower bound of the value */
    double maximum;   /* upper bound; text: buffer size in bytes; radio, combo, pages: count */
    const char* text; /* by kind, see above; may be null */
} DialogItem;

/* Sees every message before the library does; non-zero: handled, and the system gets TRUE (so no brushes). Only at
 * WM_INITDIALOG, which comes when the items are set up, does the value not count. It must let WM_DESTROY through.
 * Messages that the set-up causes, such as EN_CHANGE, reach it before WM_INITDIALOG does. The window's DWLP_USER slot
 * belongs to the library. */
typedef INT_PTR(CALLBACK* DialogCallback)(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

/* One page of a page container. Its window's parent is the dialog or the page that holds the container; WM_CLOSE on a
 * page is passed to that parent. */
typedef struct PageDescriptor {
    HINSTANCE instance;       /* module that holds the page's template; null: the dialog's own module */
    const char* templateName; /* template name or MAKEINTRESOURCEA(id) */
    DialogCallback callback;  /* may be null */
    int itemCount;
    DialogItem* items;
} PageDescriptor;

#pragma pack(pop)

/* Runs a modal dialog from a template and a table.
 *   instance, templateName  module and template (name or MAKEINTRESOURCEA(id))
 *   owner                   owner window; may be null
 *   items, itemCount        the table; null with 0 for none
 *   callback                may be null
 * Returns 1 after IDOK, 0 after IDCANCEL or when an item could not be set up, the control id of the accept or dismiss
 * button that ended the dialog, or -1 when the dialog could not be created. */
int WINAPI kwDlgBoxCtrl(HINSTANCE instance, const char* templateName, HWND owner, DialogItem* items, int itemCount,
                        DialogCallback callback);

#ifdef __cplusplus
}
#endif

/* The records' shapes, so that a compiler with other ideas about packing is found out at once. */
#ifdef _WIN64
typedef char KwSelectRequestIs64Bytes[sizeof(SelectRequest) == 64 ? 1 : -1];
typedef char KwDialogItemIs40Bytes[sizeof(DialogItem) == 40 ? 1 : -1];
typedef char KwPageDescriptorIs40Bytes[sizeof(PageDescriptor) == 40 ? 1 : -1];
#else
typedef char KwSelectRequestIs36Bytes[sizeof(SelectRequest) == 36 ? 1 : -1];
typedef char KwDialogItemIs40Bytes[sizeof(DialogItem) == 40 ? 1 : -1];
typedef char KwPageDescriptorIs20Bytes[sizeof(PageDescriptor) == 20 ? 1 : -1];
#endif

#endif /* RC_INVOKED */

#endif /* KWDIALOGS_H */
