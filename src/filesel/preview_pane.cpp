#include "filesel/preview_pane.h"

#include <commdlg.h>

#include <cstring>
#include <initializer_list>

#include "frame/module.h"
#include "frame/services.h"
#include "gallery/gallery.h"
#include "kwdialogs.h"
#include "preview/dispatch.h"
#include "preview/drawing/placeholder.h"
#include "preview/file_type.h"
#include "resources/resource.h"

namespace {

constexpr DWORD kCommentSize = 32767;

// One pane and its worker. The worker uses it only while `running` is set; the hook touches what the worker uses only
// after it has waited for that word to be cleared.
struct PreviewJob {
    HWND dialog;  // the hook's child dialog; null while no pane is open
    HBITMAP loadingBitmap;
    HBITMAP noPreviewBitmap;
    HBITMAP previewBitmap;  // of the current file, or null
    HBITMAP buttonBitmap;
    RECT target;  // the size that every picture is made for
    char* comment;
    DWORD commentSize;  // 0: no comments are shown
    char path[KW_MAX_PATH];
    volatile LONG running;  // set before the worker starts, cleared as its last word
    OPENFILENAMEA* request;
    DWORD renderMode;
};

// One pane at a time has a preview: the record is the process's, so that it outlives whatever a message may do to the
// dialog while the hook waits for the worker.
PreviewJob previewJob;

void WaitPreviewWorker(HWND dialog, PreviewJob* job) { StopWorkerAndPump(dialog, &job->running, -1, 0); }

void DeleteBitmap(HBITMAP bitmap) {
    if (bitmap) DeleteObject(bitmap);
}

// ---- Worker

void ShowPicture(const PreviewJob& job, HBITMAP bitmap) {
    SendDlgItemMessageA(job.dialog, IDC_PREVIEW_PICTURE, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
    UpdateWindow(GetDlgItem(job.dialog, IDC_PREVIEW_PICTURE));
}

void ShowComment(const PreviewJob& job, const char* comment) {
    SetDlgItemTextA(job.dialog, IDC_PREVIEW_COMMENT, comment);
}

void PreviewSelection(void* argument) {
    PreviewJob& job = *static_cast<PreviewJob*>(argument);
    ShowPicture(job, job.loadingBitmap);
    ShowComment(job, "");
    if (job.comment) ZeroMemory(job.comment, job.commentSize);
    DeleteBitmap(job.previewBitmap);
    job.previewBitmap = nullptr;

    if (const PreviewReader reader = PaneReaderFor(IdentifyFileType(job.path, nullptr, 0))) {
        job.previewBitmap = reader(job.renderMode, job.path, &job.target, job.comment, job.commentSize);
    }
    ShowPicture(job, job.previewBitmap ? job.previewBitmap : job.noPreviewBitmap);
    ShowComment(job, job.comment ? job.comment : "");
    InterlockedExchange(&job.running, 0);
}

// ---- Hook

HBITMAP MakePlaceholder(UINT textId, const RECT& target) {
    return CreatePlaceholderBitmap(kRenderColor, LoadResString(ThisModule(), textId), target);
}

UINT_PTR OnInitPane(HWND dialog, OPENFILENAMEA* request) {
    if (previewJob.dialog) return 1;  // another pane is open: this one stays without a preview
    PreviewJob& job = previewJob;
    job.dialog = dialog;
    job.request = request;
    job.renderMode = kRenderColor | static_cast<DWORD>(request->lCustData);
    job.buttonBitmap = static_cast<HBITMAP>(
        LoadImageA(ThisModule(), MAKEINTRESOURCEA(IDB_PREVIEW_BUTTON), IMAGE_BITMAP, 0, 0, LR_LOADMAP3DCOLORS));
    SendDlgItemMessageA(dialog, IDC_PREVIEW_GALLERY, BM_SETIMAGE, IMAGE_BITMAP,
                        reinterpret_cast<LPARAM>(job.buttonBitmap));
    GetClientRect(GetDlgItem(dialog, IDC_PREVIEW_PICTURE), &job.target);
    job.loadingBitmap = MakePlaceholder(IDS_LOADING, job.target);
    job.noPreviewBitmap = MakePlaceholder(IDS_NO_PREVIEW, job.target);
    job.comment = static_cast<char*>(LocalAlloc(LPTR, kCommentSize));
    job.commentSize = job.comment ? kCommentSize : 0;
    return 1;
}

UINT_PTR OnSelectionChange(HWND dialog, PreviewJob& job) {
    WaitPreviewWorker(dialog, &job);
    if (job.dialog != dialog) return 1;  // closed by a message that the wait let through
    job.path[0] = '\0';
    SendMessageA(GetParent(dialog), CDM_GETFILEPATH, sizeof(job.path), reinterpret_cast<LPARAM>(job.path));
    InterlockedExchange(&job.running, 1);
    if (!StartModuleThread(PreviewSelection, &job)) InterlockedExchange(&job.running, 0);
    return 1;
}

UINT_PTR OnNotify(HWND dialog, PreviewJob& job, const NMHDR& header) {
    if (header.code == CDN_SELCHANGE) return OnSelectionChange(dialog, job);
    if (header.code == CDN_INITDONE) CenterWindow(GetParent(dialog), nullptr);
    return 1;
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
UINT_PTR OnGalleryButton(HWND dialog, PreviewJob& job) {
    WaitPreviewWorker(dialog, &job);
    if (job.dialog != dialog) return 1;
    const HWND explorer = GetParent(dialog);
    char folder[KW_MAX_PATH] = "", name[256] = "";
    SendMessageA(explorer, CDM_GETFOLDERPATH, sizeof(folder), reinterpret_cast<LPARAM>(folder));
    SendMessageA(explorer, CDM_GETSPEC, sizeof(name), reinterpret_cast<LPARAM>(name));
    if (ShowGallery(explorer, 0, folder, SelectedPattern(*job.request), name, sizeof(name),
                    job.renderMode & kRenderFullDxf) &&
        IsWindow(explorer)) {
        // The file-name field is an edit control or, on later systems, a combo box with an id of its own.
        for (const int id : {IDC_FILE_NAME, IDC_FILE_NAME_COMBO}) {
            SendMessageA(explorer, CDM_SETCONTROLTEXT, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(name));
        }
        PostMessageA(explorer, WM_COMMAND, IDOK, 0);
    }
    return 1;
}

UINT_PTR OnDestroyPane(HWND dialog, PreviewJob& job) {
    WaitPreviewWorker(dialog, &job);
    for (HBITMAP bitmap : {job.buttonBitmap, job.loadingBitmap, job.noPreviewBitmap, job.previewBitmap}) {
        DeleteBitmap(bitmap);
    }
    LocalFree(job.comment);
    job = {};
    return 1;
}

}  // namespace

UINT_PTR CALLBACK PreviewHook(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) return OnInitPane(dialog, reinterpret_cast<OPENFILENAMEA*>(lParam));
    if (dialog != previewJob.dialog) return 0;
    switch (message) {
        case WM_NOTIFY: return OnNotify(dialog, previewJob, *reinterpret_cast<const NMHDR*>(lParam));
        case WM_COMMAND: return LOWORD(wParam) == IDC_PREVIEW_GALLERY ? OnGalleryButton(dialog, previewJob) : 1;
        case WM_DESTROY: return OnDestroyPane(dialog, previewJob);
        default: return 0;
    }
}
