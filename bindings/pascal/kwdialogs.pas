{ kwdialogs for Delphi and Free Pascal: file and directory selection, table-driven dialogs (kwdialogs.h as a unit).

  Build for the width of the DLL, Win32 or Win64. All text is 8-bit text in the system's ANSI code page (AnsiString; in Free
  Pascal one that is not declared as UTF-8). Records, buffers and texts stay alive until the call has returned. All
  calls are made on the thread of the user interface; the dialogs are modal and return on that thread. Pascal traps
  floating-point errors, and what runs inside a system dialog (shell extensions) expects that nobody does: mask them
  with SetExceptionMask of unit Math around a call.

      var
        path: array[0..KW_MAX_PATH - 1] of AnsiChar;
        request: TSelectRequest;
      begin
        SetExceptionMask([exInvalidOp, exDenormalized, exZeroDivide, exOverflow, exUnderflow, exPrecision]);
        FillChar(path, SizeOf(path), 0);
        FillChar(request, SizeOf(request), 0);
        request.filter := 'Drawings'#0'*.dxf'#0'All files'#0'*.*'#0;
        request.filterIndex := 1;
        request.fileBuffer := path;
        request.fileBufferSize := SizeOf(path);
        if kwSelectFileName(0, KW_FILE_OPEN or KW_FILE_PREVIEW, 1, @request) <> 0 then WriteLn(path);
      end.

  Names are those of kwdialogs.h, with Pascal's T and P before types; DialogItem's field "type" is itemType here. }
unit kwdialogs;

{$ifdef FPC}{$mode delphi}{$packrecords 8}{$else}{$align 8}{$endif}

interface

uses
  Windows;

const
  KwDialogsDll = 'kwdialogs.dll';

  KW_MAX_PATH = 260;

  { ---- File selection }

  { modeBits of kwSelectFileName; other bits are ignored. }
  KW_FILE_OPEN = 1;       { open an existing file; without it: choose a name to save under }
  KW_FILE_OVERWRITE = 16; { save only: do not ask before an existing file is chosen }
  KW_FILE_PREVIEW = 32;   { Explorer-style dialog only: show the preview pane }
  KW_FILE_FULL_DXF = 64;  { with KW_FILE_PREVIEW: all of a DXF, for more time and memory (guide.md) }

  { TSelectRequest.sortOptions. Keys have a fixed priority: name, extension, size, date. }
  KW_SORT_NAME = $01;
  KW_SORT_EXTENSION = $02;
  KW_SORT_SIZE = $04;
  KW_SORT_DATE = $08;
  KW_SORT_DESCENDING = $80; { no check box sets it; it reverses the whole order }

  { TSelectRequest.displayOptions: the columns behind each file name. }
  KW_SHOW_SIZE = $01;
  KW_SHOW_DATE = $02;
  KW_SHOW_TIME = $04;
  KW_SHOW_COMMENT = $08;

  { ---- Dialogs run from a table }

  { TDialogItem.itemType, bits 0-7: what the control is. }
  KW_KIND_EDIT = 1;   { text: printf format of the value; nil: the value type's own }
  KW_KIND_CHECK = 2;  { text: label; checked when the value is not 0 }
  KW_KIND_RADIO = 3;  { text: maximum labels, each ended by #0; the value is the index of the checked button }
  KW_KIND_COMBO = 4;  { text: maximum entries, each ended by #0; the value is the index of the selected one }
  KW_KIND_LABEL = 5;  { text: label; with KW_VALUE_TEXT the printf format of the host's string }
  KW_KIND_BUTTON = 6; { text: label }
  KW_KIND_PAGES = 7;  { minimum: page shown first; maximum: number of pages }

  { TDialogItem.itemType, bits 8-15: the type of the host's variable. }
  KW_VALUE_NONE = $000;
  KW_VALUE_TEXT = $100; { array of AnsiChar, maximum bytes, terminator included; kinds edit and label }
  KW_VALUE_INT8 = $200; { ShortInt; kinds edit, check, radio and combo, as for all numbers }
  KW_VALUE_INT16 = $300; { SmallInt }
  KW_VALUE_INT32 = $400; { LongInt }
  KW_VALUE_FLOAT = $500; { Single }
  KW_VALUE_DOUBLE = $600;
  KW_VALUE_ACCEPT = $700;  { push button that ends the dialog with its own id after write-back }
  KW_VALUE_DISMISS = $800; { push button that ends the dialog with its own id without write-back }
  KW_VALUE_PAGES = $900;   { array of TPageDescriptor; kind pages only }

  { TDialogItem.itemType, bits 16-23: flags. }
  KW_FLAG_DISABLED = $10000;  { disabled when the dialog opens (radio: all buttons) }
  KW_FLAG_HIDDEN = $20000;    { hidden when the dialog opens (radio: all buttons) }
  KW_FLAG_SPIN = $40000;      { edit fields: attach a spin button that steps by one }
  KW_FLAG_KEEP_PAGE = $80000; { pages: on acceptance store the index of the page shown into minimum }

type
  { What kwSelectFileName asks and answers: 36 bytes, in 64 bits 64. The host owns every buffer. }
  PSelectRequest = ^TSelectRequest;
  TSelectRequest = record
    title: PAnsiChar;         { dialog caption; nil: the system's own }
    filter: PAnsiChar;        { pairs of description and pattern, each ended by #0, the list by one more #0 }
    initialDir: PAnsiChar;    { starting directory, may be relative; nil: the system's choice }
    filterIndex: DWORD;       { in/out: 1-based filter pair; written back after OK and after Cancel }
    fileBuffer: PAnsiChar;    { in: initial file name; out: the chosen full path }
    fileBufferSize: DWORD;    { capacity of fileBuffer in bytes, terminator included }
    defaultExt: PAnsiChar;    { extension without its dot for a name typed without one; may be nil }
    sortOptions: DWORD;       { in/out, classic dialog only: KW_SORT_... }
    displayOptions: DWORD;    { in/out, classic dialog only: KW_SHOW_... }
  end;

  { One control, or one radio group, of a dialog: 40 bytes in both widths. The host owns the table; it stays alive and writable until
    the dialog has ended. A range is active only when minimum and maximum differ. }
  PDialogItem = ^TDialogItem;
  TDialogItem = record
    controlId: LongInt;    { radio group: id of the first button, the others follow it }
    itemType: DWORD;       { kind or value type or flags }
    value: Pointer;        { the host's variable; text: its buffer; pages: its array of TPageDescriptor }
    minimum: Double;       { lower bound of the value }
    maximum: Double;       { upper bound; text: buffer size in bytes; radio, combo, pages: count }
    text: PAnsiChar;       { by kind, see above; may be nil }
  end;

  { Sees every message before the library does; non-zero: handled. The window's DWLP_USER slot belongs to the library.
    No exception may leave it. }
  TDialogCallback = function(dialog: HWND; message: UINT; wParam: WPARAM; lParam: LPARAM): LRESULT; stdcall;

  { One page of a page container: 20 bytes, in 64 bits 40. }
  PPageDescriptor = ^TPageDescriptor;
  TPageDescriptor = record
    instance: HINST;             { module that holds the page's template; 0: the dialog's own module }
    templateName: PAnsiChar;     { template name, or PAnsiChar(number) }
    callback: TDialogCallback;   { may be nil }
    itemCount: LongInt;
    items: PDialogItem;
  end;

{ Lets the user choose one file.
    owner         window that owns the modal dialog; may be 0
    modeBits      KW_FILE_...
    keepLongName  0: the chosen path is turned into its short (8.3) form in place; else it stays long
    request       see above; nil gives 0
  Returns non-zero when the user confirmed a file, 0 on Cancel and when the dialog could not be shown; fileBuffer then
  holds whatever the dialog left in it. }
function kwSelectFileName(owner: HWND; modeBits, keepLongName: LongInt; request: PSelectRequest): LongWord; stdcall;

{ Reads or sets the dialog style of the whole process: 0 (at start) for the Explorer style wherever the shell has it,
  any positive value for the classic style. A negative mode changes nothing. Returns the style before the call. }
function kwSelectFileGUI(mode: LongInt): LongInt; stdcall;

{ Lets the user choose a directory.
    owner      window that owns the modal dialog; may be 0
    title      dialog caption; nil: "DirSelection" in the folder tree, the system's own in the classic style
    directory  at least KW_MAX_PATH bytes; in: starting directory, out: the chosen one, both with a trailing backslash
               (the folder tree selects the parent of one that has none); a virtual folder gives the shell's name for
               it. Nil, or a text that does not end within KW_MAX_PATH, gives 0
  Returns non-zero when a directory was chosen; otherwise 0 with the buffer unchanged.
  The spelling "Directry" belongs to the exported name. }
function kwSelectDirectryName(owner: HWND; title, directory: PAnsiChar): LongWord; stdcall;

{ Runs a modal dialog from a template and a table.
    instance, templateName  module and template (its name, or PAnsiChar(number))
    owner                   owner window; may be 0
    items, itemCount        the table; nil with 0 for none
    callback                may be nil
  Returns 1 after IDOK, 0 after IDCANCEL or when an item could not be set up, the control id of the accept or dismiss
  button that ended the dialog, or -1 when the dialog could not be created. }
function kwDlgBoxCtrl(instance: HINST; templateName: PAnsiChar; owner: HWND; items: PDialogItem; itemCount: LongInt;
  callback: TDialogCallback): LongInt; stdcall;

implementation

function kwSelectFileName; external KwDialogsDll name 'kwSelectFileName';
function kwSelectFileGUI; external KwDialogsDll name 'kwSelectFileGUI';
function kwSelectDirectryName; external KwDialogsDll name 'kwSelectDirectryName';
function kwDlgBoxCtrl; external KwDialogsDll name 'kwDlgBoxCtrl';

end.
