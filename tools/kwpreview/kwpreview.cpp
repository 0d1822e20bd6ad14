// kwpreview: draws previews into PNG files, as the dialogs would show them, and says why a file shows nothing.
//
//   kwpreview FILE... [-o DIR] [--size WxH] [--mono] [--frames] [--comment] [--kind]
//             [--basic-dxf]
//
// docs/kwpreview.md tells more; --help says the same in short.
#include <algorithm>

#include "arguments.h"
#include "console.h"
#include "files.h"
#include "output.h"
#include "png_file.h"
#include "preview/drawing/canvas.h"
#include "render.h"
#include "report.h"
#include "resource.h"

// The C runtime leaves wildcards alone: a pattern that matches nothing would come to us like a file's name.
extern "C" {
int _dowildcard = 0;  // NOLINT(bugprone-reserved-identifier)
}

namespace {

// The worst thing that has happened.
enum ExitCode { kAllPictures = 0, kNoPicture = 1, kUsage = 2, kNoFile = 3, kNotWritten = 4 };

ExitCode CodeOf(NoPicture problem) {
    switch (problem) {
        case NoPicture::none: return kAllPictures;
        case NoPicture::missing:
        case NoPicture::noMatch:
        case NoPicture::emptyFolder:
        case NoPicture::foreignName:
        case NoPicture::unreadable:
        case NoPicture::device: return kNoFile;
        case NoPicture::notWritten: return kNotWritten;
        default: return kNoPicture;
    }
}

int Complain(const std::string& text, ExitCode code) {
    Print(stderr, "kwpreview: " + text + "\n");
    return code;
}

int PrintHelp() {
    for (UINT id = IDS_HELP;; ++id) {
        const std::string line = Text(id);
        if (line.empty()) return kAllPictures;
        Print(stdout, line == " " ? "\n" : line + "\n");
    }
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

int RenderAll(const Options& options, const std::vector<Input>& inputs) {
    OutputNames names(options.folder, inputs);
    Progress progress(inputs.size());
    ExitCode code = kAllPictures;
    std::size_t pictures = 0, number = 0;
    for (const Input& input : inputs) {
        progress.Show(++number, input.path);
        Preview preview = PreviewOf(options, input);
        std::string png;
        if (preview.problem == NoPicture::none) {
            png = names.Take(input.path);
            if (SavePng(preview.bitmap.get(), png.c_str())) ++pictures;
            else preview.problem = NoPicture::notWritten;
        }
        progress.Clear();
        PrintReport(options, input.path, png, preview);
        code = std::max(code, CodeOf(preview.problem));
    }
    PrintSummary(pictures, inputs.size());
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);  // no boxes for drives without a medium
    Options options;
    std::string complaint;
    if (!ParseArguments(argc, argv, &options, &complaint)) {
        return Complain(complaint + " " + Text(IDS_SEE_HELP), kUsage);
    }
    if (options.help) return PrintHelp();
    const std::vector<Input> inputs = FindInputs(options.inputs);
    if (const DWORD error = options.folder.empty() ? 0 : MakeFolder(options.folder)) {
        return Complain(TextWith(IDS_NO_FOLDER, {options.folder, SystemMessage(error)}), kNotWritten);
    }
    return RenderAll(options, inputs);
}
