#include "filesel/preview_pane.h"

#include <commctrl.h>
#include <commdlg.h>

#include <cstring>
#include <initializer_list>
#include <memory>

#include "frame/module.h"
#include "frame/services.h"
#include "gallery/gallery.h"
#include "kit/handles.h"
#include "kit/screen.h"
#include "kwdialogs.h"
#include "preview/dispatch.h"
#include "preview/drawing/placeholder.h"
#include "preview/file_type.h"
#include "resources/resource.h"

namespace {

constexpr std::size_t kCommentSize = 32767;

// One open pane and its worker. The worker uses it only while it runs; the hook touches what the worker uses only after
// it has waited for that.
struct PreviewJob {
    HWND dialog;  // the hook's child dialog; null when it has been destroyed
    const OPENFILENAMEA* request;
    DWORD renderMode;
    RECT target = {};  // the size that every picture is made for
    UniqueBitmap loadingBitmap, noPreviewBitmap, buttonBitmap;
    UniqueBitmap previewBitmap;  // of the current file, or null
    UniqueLocal<char> comment;   // null: no comments are shown
    DWORD commentSize = 0;
    char path[KW_MAX_PATH] = "";
    Worker worker;
    bool selectionChanged = false, galleryWanted = false;  // what the user has asked for, until it is served
    bool isServing = false;
};

// One pane at a time has a preview. Whoever lets messages through holds the record meanwhile: they may close the
// dialog.
std::shared_ptr<PreviewJob> previewJob;

void WaitPreviewWorker(PreviewJob& job) { StopWorkerAndPump(&job.worker, job.dialog); }

// ---- Worker

void ShowPicture(const PreviewJob& job, const UniqueBitmap& bitmap) {
    SendDlgItemMessageA(job.dialog, IDC_PREVIEW_PICTURE, STM_SETIMAGE, IMAGE_BITMAP,
                        reinterpret_cast<LPARAM>(bitmap.get()));
    UpdateWindow(GetDlgItem(job.dialog, IDC_PREVIEW_PICTURE));
}

void ShowComment(const PreviewJob& job, const char* comment) {
    SetDlgItemTextA(job.dialog, IDC_PREVIEW_COMMENT, comment);
}

void PreviewSelection(void* argument) {
    PreviewJob& job = *static_cast<PreviewJob*>(argument);
    ShowPicture(job, job.loadingBitmap);
    ShowComment(job, "");
    if (job.comment) ZeroMemory(job.comment.get(), job.commentSize);
    job.previewBitmap.reset();

    if (const PreviewReader reader = PaneReaderFor(IdentifyFileType(job.path, nullptr, 0))) {
        job.previewBitmap.reset(reader(job.renderMode, job.path, &job.target, job.comment.get(), job.commentSize));
    }
    ShowPicture(job, job.previewBitmap ? job.previewBitmap : job.noPreviewBitmap);
    ShowComment(job, job.comment ? job.comment.get() : "");
}

// ---- Opening

UniqueBitmap MakePlaceholder(UINT textId, const RECT& target) {
    return UniqueBitmap(CreatePlaceholderBitmap(kRenderColor, LoadResString(ThisModule(), textId), target));
}

// The button's picture in the screen's resolution.
UniqueBitmap LoadButtonPicture() {
    const char* const name = MAKEINTRESOURCEA(IDB_PREVIEW_BUTTON);
    UniqueBitmap picture(static_cast<HBITMAP>(LoadImageA(ThisModule(), name, IMAGE_BITMAP, 0, 0, LR_LOADMAP3DCOLORS)));
    BITMAP shape = {};
    GetObjectA(picture.get(), sizeof(shape), &shape);
    if (ScreenPixels(shape.bmWidth) == shape.bmWidth) return picture;
    return UniqueBitmap(static_cast<HBITMAP>(
        CopyImage(picture.get(), IMAGE_BITMAP, ScreenPixels(shape.bmWidth), ScreenPixels(shape.bmHeight), 0)));
}

// The button shows no text, so a tooltip says what it does. It goes with the dialog.
void ExplainButton(HWND dialog) {
    const HWND tip =
        CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, ThisModule(), nullptr);
    TOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;  // which the common controls of every version know
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = dialog;
    tool.uId = reinterpret_cast<UINT_PTR>(GetDlgItem(dialog, IDC_PREVIEW_GALLERY));
    tool.hinst = ThisModule();
    tool.lpszText = MAKEINTRESOURCEA(IDS_GALLERY_TIP);
    SendMessageA(tip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

// An edit control of several lines wants every key, but nobody types here: Enter and Esc are the dialog's.
LRESULT CALLBACK CommentProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    if (message == WM_NCDESTROY) RemoveWindowSubclass(edit, CommentProc, id);
    const LRESULT result = DefSubclassProc(edit, message, wParam, lParam);
    return message == WM_GETDLGCODE ? result & ~(DLGC_WANTALLKEYS | DLGC_WANTMESSAGE) : result;
}

UINT_PTR OnInitPane(HWND dialog, const OPENFILENAMEA* request) {
    if (previewJob) return 1;  // another pane is open: this one stays without a preview
    previewJob = std::make_shared<PreviewJob>();
    PreviewJob& job = *previewJob;
    job.dialog = dialog;
    job.request = request;
    job.renderMode = kRenderColor | static_cast<DWORD>(request->lCustData);
    job.buttonBitmap = LoadButtonPicture();
    SendDlgItemMessageA(dialog, IDC_PREVIEW_GALLERY, BM_SETIMAGE, IMAGE_BITMAP,
                        reinterpret_cast<LPARAM>(job.buttonBitmap.get()));
    ExplainButton(dialog);
    SetWindowSubclass(GetDlgItem(dialog, IDC_PREVIEW_COMMENT), CommentProc, 0, 0);
    GetClientRect(GetDlgItem(dialog, IDC_PREVIEW_PICTURE), &job.target);
    job.loadingBitmap = MakePlaceholder(IDS_LOADING, job.target);
    job.noPreviewBitmap = MakePlaceholder(IDS_NO_PREVIEW, job.target);
    job.comment.reset(static_cast<char*>(LocalAlloc(LPTR, kCommentSize)));
    job.commentSize = job.comment ? kCommentSize : 0;
    return 1;
}

// ---- Selection and gallery

void ShowSelection(PreviewJob& job) {
    job.path[0] = '\0';
    SendMessageA(GetParent(job.dialog), CDM_GETFILEPATH, sizeof(job.path), reinterpret_cast<LPARAM>(job.path));
    StartWorker(&job.worker, PreviewSelection, &job);
}

// The pattern of the filter pair that is selected, or "*.*".
const char* SelectedPattern(const OPENFILENAMEA& request) {
    const char* at = request.lpstrFilter;
    for (DWORD pair = 1; at && *at; ++pair) {
        const char* const pattern = at + std::strlen(at) + 1;
        if (pair == request.nFilterIndex) return pattern;
        at = *pattern ? pattern + std::strlen(pattern) + 1 : pattern;
    }
    return "*.*";
}

// Lets the user choose from the folder's gallery; a choice closes the file dialog with that file.
void ShowFolder(const PreviewJob& job) {
    const HWND explorer = GetParent(job.dialog);
    char folder[KW_MAX_PATH] = "", name[256] = "";
    SendMessageA(explorer, CDM_GETFOLDERPATH, sizeof(folder), reinterpret_cast<LPARAM>(folder));
    SendMessageA(explorer, CDM_GETSPEC, sizeof(name), reinterpret_cast<LPARAM>(name));
    if (!ShowGallery(explorer, 0, folder, SelectedPattern(*job.request), name, sizeof(name),
                     job.renderMode & kRenderFullDxf) ||
        !job.dialog) {
        return;
    }
    // The file-name field is an edit control or, on later systems, a combo box with an id of its own.
    for (const int id : {IDC_FILE_NAME, IDC_FILE_NAME_COMBO}) {
        SendMessageA(explorer, CDM_SETCONTROLTEXT, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(name));
    }
    PostMessageA(explorer, WM_COMMAND, IDOK, 0);
}

// Does what the user has asked for, one after the other. Waiting for the worker and the gallery let messages through;
// what they ask for is only noted, so no second gallery opens, the pane rests while one is open, and the last selection
// is shown when it has closed.
UINT_PTR Serve(const std::shared_ptr<PreviewJob>& job) {
    if (job->isServing) return 1;
    const Raised serving(job->isServing);
    while (job->dialog && (job->selectionChanged || job->galleryWanted)) {
        WaitPreviewWorker(*job);
        if (!job->dialog) break;  // closed by a message that the wait let through
        if (job->galleryWanted) {
            const Raised shown(job->galleryWanted);  // still wanted while it is open
            ShowFolder(*job);
        } else {
            job->selectionChanged = false;
            ShowSelection(*job);
        }
    }
    return 1;
}

// ---- Messages

UINT_PTR OnNotify(const std::shared_ptr<PreviewJob>& job, const NMHDR& header) {
    if (header.code == CDN_INITDONE) CenterWindow(GetParent(job->dialog), nullptr);
    if (header.code != CDN_SELCHANGE) return 1;
    job->selectionChanged = true;
    return Serve(job);
}

UINT_PTR OnCommand(const std::shared_ptr<PreviewJob>& job, int id) {
    if (id != IDC_PREVIEW_GALLERY) return 1;
    job->galleryWanted = true;
    return Serve(job);
}

UINT_PTR OnDestroyPane(PreviewJob& job) {
    WaitPreviewWorker(job);
    job.dialog = nullptr;
    previewJob.reset();
    return 1;
}

}  // namespace

UINT_PTR CALLBACK PreviewHook(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) return OnInitPane(dialog, reinterpret_cast<const OPENFILENAMEA*>(lParam));
    const std::shared_ptr<PreviewJob> job = previewJob;
    if (!job || dialog != job->dialog) return 0;
    switch (message) {
        case WM_NOTIFY: return OnNotify(job, *reinterpret_cast<const NMHDR*>(lParam));
        case WM_COMMAND: return OnCommand(job, LOWORD(wParam));
        case WM_DESTROY: return OnDestroyPane(*job);
        default: return 0;
    }
}
