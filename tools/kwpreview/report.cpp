#include "report.h"

#include "console.h"
#include "resource.h"

static std::wstring WhyText(const Preview& preview, NoPicture problem, const FilePath& png) {
    const UINT id = IDS_WHY + static_cast<UINT>(problem);
    switch (problem) {
        case NoPicture::unreadable: return TextWith(id, {SystemMessage(preview.error)});
        case NoPicture::ofNamed: return TextWith(id, {preview.named, WhyText(preview, preview.whyNamed, png)});
        case NoPicture::namesOther: return TextWith(id, {preview.named});
        case NoPicture::notWritten: return TextWith(id, {png});
        default: return Text(id);
    }
}

static std::wstring FirstLine(const FilePath& input, const FilePath& png, const Preview& preview) {
    if (preview.problem != NoPicture::none)
        return TextWith(IDS_NO_PICTURE, {input, WhyText(preview, preview.problem, png)});
    BITMAP size = {};
    GetObjectA(preview.bitmap.get(), sizeof(size), &size);
    return TextWith(IDS_PICTURE, {input, png, std::to_wstring(size.bmWidth), std::to_wstring(size.bmHeight)});
}

static std::wstring Indented(const std::wstring& lines) {
    std::wstring text;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = lines.find(L'\n', at) + 1;  // every line has one
        text += (end - at > 1 ? L"        " : L"") + lines.substr(at, end - at);
        at = end;
    }
    return text;
}

static std::wstring CommentLines(const std::wstring& comment) {
    if (comment.empty()) return L"    " + Text(IDS_NO_COMMENT_LINE) + L"\n";
    return L"    " + Text(IDS_COMMENT_LINE) + L"\n" + Indented(comment);
}

std::wstring ReportOf(const Options& options, const FilePath& input, const FilePath& png, const Preview& preview) {
    std::wstring text = FirstLine(input, png, preview) + L"\n";
    if (preview.onlyFullDxf) text += L"    " + Text(IDS_ONLY_FULL_DXF) + L"\n";
    if (preview.kind != FT_UNREADABLE) {
        const UINT description = IDS_KIND + static_cast<UINT>(preview.kind);
        if (options.kind)
            text += L"    " + TextWith(IDS_KIND_LINE, {KindWord(preview.kind), Text(description)}) + L"\n";
        if (options.comment) text += CommentLines(preview.comment);
    }
    return text;
}

std::wstring SummaryOf(std::size_t pictures, std::size_t inputs) {
    if (inputs < 2) return {};
    return TextWith(IDS_SUMMARY, {std::to_wstring(pictures), std::to_wstring(inputs)}) + L"\n";
}

// ---- Progress

namespace {

struct Locked {  // for the length of a scope
    SRWLOCK& lock;
    explicit Locked(SRWLOCK& of) : lock(of) { AcquireSRWLockExclusive(&lock); }
    ~Locked() { ReleaseSRWLockExclusive(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
};

}  // namespace

Progress::Progress(std::size_t inputs) : count(inputs), stop(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
    thread.reset(CreateThread(nullptr, 0, Run, this, 0, nullptr));
}

Progress::~Progress() {
    SetEvent(stop.get());
    WaitForSingleObject(thread.get(), INFINITE);
}

DWORD WINAPI Progress::Run(void* progress) {
    constexpr DWORD kInterval = 1000;
    auto& self = *static_cast<Progress*>(progress);
    while (WaitForSingleObject(self.stop.get(), kInterval) == WAIT_TIMEOUT) {
        const Locked locked(self.lock);
        self.Clear();
        self.Show();
    }
    return 0;
}

void Progress::Begin(const FilePath& input) {
    const Locked locked(lock);
    ++number;
    name = input.filename();  // a path may be longer than the console is wide
}

void Progress::Report(std::FILE* stream, const std::wstring& text) {
    const Locked locked(lock);
    Clear();
    Print(stream, text);
}

void Progress::Show() {
    if (number == 0) return;
    const bool isConsole = IsConsole(stderr);
    const auto seconds = static_cast<std::size_t>((GetTickCount64() - start) / 1000);
    const std::wstring line =
        TextWith(IDS_PROGRESS, {std::to_wstring(number), std::to_wstring(count), name, std::to_wstring(seconds)});
    Print(stderr, line + (isConsole ? L"\r" : L"\n"));
    if (isConsole) shown = line.size();
}

void Progress::Clear() {
    if (shown > 0) Print(stderr, std::wstring(shown, L' ') + L"\r");
    shown = 0;
}
