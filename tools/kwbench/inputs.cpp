// What the benchmarks read: files in the run's folder.
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "kwbench.h"

void Require(bool holds, const std::string& otherwise) {
    if (!holds) throw std::runtime_error(otherwise);
}

std::string MakeFolder(const Bench& bench, const char* name) {
    std::string folder = bench.folder + name + "\\";
    Require(CreateDirectoryA(folder.c_str(), nullptr), "cannot make " + folder);
    return folder;
}

void WriteFile(const std::string& path, const std::string& contents) {
    std::ofstream file(path, std::ios::binary);
    Require((file << contents << std::flush).good(), "cannot write " + path);
}

Drawing WriteDrawing(const std::string& path, const DrawingPlan& plan) {
    static constexpr struct {
        const PreviewFormat& format;
        const char* extension;
    } kKinds[] = {{kDxfFormat, ".dxf"},
                  {kNativeFormat, ".drw"},
                  {kBackupFormat, ".bak"},
                  {kTextFormat, ".exf"},
                  {kFullDxfFormat, ".dxf"}};  // in the order of DrawingFormat
    const auto& kind = kKinds[static_cast<int>(plan.format)];
    const std::string contents = MakeDrawing(plan);
    WriteFile(path + kind.extension, contents);
    return {&kind.format, path + kind.extension, contents.size()};
}

std::vector<std::string> WriteSmallFiles(const std::string& folder, std::size_t count) {
    static const struct {
        const char* extension;
        std::string head, filling;
    } kKinds[] = {
        {".TXT", "", "the drawing of a bracket, two holes.\r\n"},
        {".LST", "", "bracket, the holes of the drawing.\r\n"},
        {".DOC", "", "\x90\x7D\x96\xCA\x90\x7D\x96\xCA\r\n"},
        {".NC", "%\r\nO0100\r\n", "G01 X125.5 Y48.25\r\n"},
        {".PTP", "", "X125.5 Y48.25\r\nG00 X5.5 Y8.25\r\n"},
        {".DXF", "", " 10\r\n125.125\r\n"},
        {".EXE", "MZ", "\x90\x03\x01\x04\xFF\xB8"},
        {".DLL", "MZ", "\x90\x03\x01\x04\xFF\xB8"},
        {".BMP", "BM", "\x36\x28\x01\xFF\xFF\x80"},
        {".DAT", "", "\xA5\x25\x07\x81\xFE"},
        {".DRW", std::string(4, '\0') + "CAD ORVIL QA V4.0    \x14", "\x01\xA5\x25\x80"},
        {".DRW", std::string(4, '\0') + "LumosBase            \x1A", "\x01\xA5\x25\x80"},
        {".BAK", "VEXTRON lumos Backup V2", "\x01\xA5\x25\x80"},
    };
    std::vector<std::string> names;
    Random random{1};
    for (std::size_t i = 0; i < count; ++i) {
        const auto& kind = kKinds[random.Below(std::size(kKinds))];
        const std::size_t size = 1024 + random.Below(3 * 1024);
        std::string contents = kind.head;
        while (contents.size() < size) contents += kind.filling;
        names.push_back("part" + std::to_string(i) + kind.extension);
        WriteFile(folder + names.back(), contents);
    }
    return names;
}
