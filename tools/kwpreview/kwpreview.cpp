// kwpreview: draws previews into PNG files, as the dialogs would show them, and says why a file shows nothing.
//
//   kwpreview FILE... [-o DIR|NAME.png] [--size WxH] [--mono] [--frames] [--comment] [--kind] [--recursive] [--strict]
//             [--basic-dxf]
//
// docs/kwpreview.md tells more; --help says the same in short. Files are opened here, by their wide names, and their
// bytes go to the library's readers.
#include <windows.h>

#include <shellapi.h>

#include <algorithm>

#include "arguments.h"
#include "console.h"
#include "files.h"
#include "kit/handles.h"
#include "kwdialogs.h"
#include "output.h"
#include "png_file.h"
#include "preview/drawing/canvas.h"
#include "render.h"
#include "report.h"
#include "resource.h"

namespace {

// The worst thing that has happened.
enum ExitCode { kNothingWrong = 0, kNoPicture = 1, kUsage = 2, kNoFile = 3, kNotWritten = 4 };

ExitCode CodeOf(const Preview& preview, bool isStrict) {
    switch (preview.problem) {
        case NoPicture::none: return kNothingWrong;
        case NoPicture::missing:
        case NoPicture::noMatch:
        case NoPicture::emptyFolder:
        case NoPicture::unreadable:
        case NoPicture::device: return kNoFile;
        case NoPicture::notWritten: return kNotWritten;
        default: return isStrict || IsDrawing(preview.kind) ? kNoPicture : kNothingWrong;
    }
}

int Complain(const std::wstring& text, ExitCode code) {
    Print(stderr, L"kwpreview: " + text + L"\n");
    return code;
}

int Finish(ExitCode code) { return OutputFailed() ? Complain(Text(IDS_NO_OUTPUT), kNotWritten) : code; }

int PrintHelp() {
    for (UINT id = IDS_HELP;; ++id) {
        const std::wstring line = Text(id);
        if (line.empty()) return Finish(kNothingWrong);
        Print(stdout, line == L" " ? L"\n" : line + L"\n");
    }
}

int PrintVersion() {
    Print(stdout, L"kwpreview " + std::to_wstring(KW_VERSION_MAJOR) + L"." + std::to_wstring(KW_VERSION_MINOR) + L"." +
                      std::to_wstring(KW_VERSION_PATCH) + L"\n");
    return Finish(kNothingWrong);
}

Preview PreviewOf(const Options& options, const Input& input) {
    Preview preview;
    switch (input.problem) {
        case InputProblem::noMatch: preview.problem = NoPicture::noMatch; return preview;
        case InputProblem::emptyFolder: preview.problem = NoPicture::emptyFolder; return preview;
        case InputProblem::none: break;
    }
    const DWORD renderMode = (options.mono ? 0 : kRenderColor) | (options.frames ? kRenderTextFrames : 0) |
                             (options.basicDxf ? 0 : kRenderFullDxf);
    return RenderPreview(input.path, renderMode, options.size);
}

// Pictures go to `file` when it is named, else where `names` says.
int RenderAll(const Options& options, const std::vector<Input>& inputs, const FilePath& file, OutputNames names) {
    Progress progress(inputs.size());
    ExitCode worst = kNothingWrong;
    std::size_t pictures = 0;
    for (const Input& input : inputs) {
        progress.Begin(input.path);
        Preview preview = PreviewOf(options, input);
        FilePath png;
        if (preview.problem == NoPicture::none) {
            png = file.empty() ? names.Take(input.path) : file;
            if (SavePng(preview.bitmap.get(), png.c_str())) ++pictures;
            else preview.problem = NoPicture::notWritten;
        }
        const ExitCode code = CodeOf(preview, options.strict);
        progress.Report(code == kNothingWrong ? stdout : stderr, ReportOf(options, input.path, png, preview));
        worst = std::max(worst, code);
        if (OutputFailed()) break;
    }
    progress.Report(stdout, SummaryOf(pictures, inputs.size()));
    return Finish(worst);
}

int Run(const Options& options) {
    const std::vector<Input> inputs = FindInputs(options.inputs, options.recursive);
    const bool isFile = HasPngExtension(options.output) && !IsFolder(options.output);
    const FilePath folder = isFile ? options.output.parent_path() : options.output;
    if (isFile && (inputs.size() != 1 || PathKey(inputs[0].path) == PathKey(options.output))) {
        return Complain(TextWith(IDS_ONE_FILE, {options.output}), kUsage);
    }
    if (const DWORD error = folder.empty() ? 0 : MakeFolder(folder)) {
        return Complain(TextWith(IDS_NO_FOLDER, {folder, SystemMessage(error)}), kNotWritten);
    }
    return RenderAll(options, inputs, isFile ? options.output : FilePath(), OutputNames(folder, inputs));
}

std::vector<std::wstring> Arguments() {
    int count = 0;
    const UniqueLocal<wchar_t*> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
    return std::vector<std::wstring>(arguments.get(), arguments.get() + count);
}

}  // namespace

int main() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);  // no boxes for drives without a medium
    Options options;
    std::wstring complaint;
    if (!ParseArguments(Arguments(), &options, &complaint)) {
        return Complain(complaint + L" " + Text(IDS_SEE_HELP), kUsage);
    }
    if (options.help) return PrintHelp();
    if (options.version) return PrintVersion();
    return Run(options);
}
