#include "report.h"

#include "console.h"
#include "kit/paths.h"
#include "resource.h"

static std::string WhyText(const Preview& preview, NoPicture problem, const std::string& png) {
    const UINT id = IDS_WHY + static_cast<UINT>(problem);
    switch (problem) {
        case NoPicture::unreadable: return TextWith(id, {SystemMessage(preview.error)});
        case NoPicture::ofNamed: return TextWith(id, {preview.named, WhyText(preview, preview.whyNamed, png)});
        case NoPicture::namesOther: return TextWith(id, {preview.named});
        case NoPicture::notWritten: return TextWith(id, {png});
        default: return Text(id);
    }
}

static std::string FirstLine(const std::string& input, const std::string& png, const Preview& preview) {
    if (preview.problem != NoPicture::none)
        return TextWith(IDS_NO_PICTURE, {input, WhyText(preview, preview.problem, png)});
    BITMAP size = {};
    GetObjectA(preview.bitmap.get(), sizeof(size), &size);
    return TextWith(IDS_PICTURE, {input, png, std::to_string(size.bmWidth), std::to_string(size.bmHeight)});
}

static std::string Indented(const std::string& lines) {
    std::string text;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = lines.find('\n', at) + 1;  // every line has one
        text += (end - at > 1 ? "        " : "") + lines.substr(at, end - at);
        at = end;
    }
    return text;
}

static std::string CommentLines(const std::string& comment) {
    if (comment.empty()) return "    " + Text(IDS_NO_COMMENT_LINE) + "\n";
    return "    " + Text(IDS_COMMENT_LINE) + "\n" + Indented(comment);
}

void PrintReport(const Options& options, const std::string& input, const std::string& png, const Preview& preview) {
    std::string text = FirstLine(input, png, preview) + "\n";
    if (preview.onlyFullDxf) text += "    " + Text(IDS_ONLY_FULL_DXF) + "\n";
    if (preview.kind != FT_UNREADABLE) {
        const UINT description = IDS_KIND + static_cast<UINT>(preview.kind);
        if (options.kind) text += "    " + TextWith(IDS_KIND_LINE, {KindWord(preview.kind), Text(description)}) + "\n";
        if (options.comment) text += CommentLines(preview.comment);
    }
    Print(stdout, text);
}

void PrintSummary(std::size_t pictures, std::size_t inputs) {
    if (inputs < 2) return;
    Print(stdout, TextWith(IDS_SUMMARY, {std::to_string(pictures), std::to_string(inputs)}) + "\n");
}

void Progress::Show(std::size_t number, const std::string& input) {
    constexpr std::size_t kFew = 3, kLines = 10;
    if (count <= kFew) return;
    const bool isConsole = IsConsole(stderr);
    if (!isConsole && (number - 1) % ((count + kLines - 1) / kLines) != 0) return;
    const char* const name = FindFileName(input.c_str());  // a path may be longer than the console is wide
    const std::string line = TextWith(IDS_PROGRESS, {std::to_string(number), std::to_string(count), name});
    Print(stderr, line + (isConsole ? "\r" : "\n"));
    if (isConsole) shown = line.size();
}

void Progress::Clear() {
    if (shown > 0) Print(stderr, std::string(shown, ' ') + "\r");
    shown = 0;
}
