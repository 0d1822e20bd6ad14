#include "preview/dispatch.h"

#include <utility>

#include "frame/services.h"
#include "kit/handles.h"
#include "preview/command_reader.h"

namespace {

enum Place : unsigned { kPane = 1, kGallery = 2, kCommand = 4 };

struct DispatchRow {
    FileTypeCode code;
    unsigned places;
    PreviewReader reader;
    const PreviewFormat* format = nullptr;
};
template <const PreviewFormat& format>
constexpr DispatchRow Shows(FileTypeCode code, unsigned places) {
    return {code, places, ReadFormat<format>, &format};
}

constexpr DispatchRow kDispatch[] = {
    Shows<kNativeFormat>(FT_LUMOS, kPane | kGallery | kCommand),
    Shows<kNativeFormat>(FT_QA, kPane | kGallery | kCommand),
    Shows<kQjFormat>(FT_QJ, kPane | kGallery),
    Shows<kQfFormat>(FT_QF, kPane | kGallery),
    Shows<kDxfFormat>(FT_DXF, kPane | kGallery | kCommand),
    Shows<kTextFormat>(FT_EXF, kPane | kGallery | kCommand),
    {FT_DLL, kPane, ReadVersionComment},
    {FT_EXE, kPane, ReadVersionComment},
    Shows<kBitmapFormat>(FT_BMP, kPane),
    Shows<kPlainTextFormat>(FT_TEXT, kPane | kGallery),
    {FT_NCPROGRAM, kPane | kGallery, ReadNcComment},
    Shows<kBackupFormat>(FT_BACKUP, kPane | kGallery),
    {FT_COMMAND, kPane | kGallery, PreviewCommandFile},
};

const DispatchRow* FindRow(FileTypeCode code) {
    for (const DispatchRow& row : kDispatch) {
        if (row.code == code) return &row;
    }
    return nullptr;
}

PreviewReader ReaderFor(FileTypeCode code, Place place) {
    const DispatchRow* row = FindRow(code);
    return row && (row->places & place) ? row->reader : nullptr;
}

}  // namespace

PreviewReader PaneReaderFor(FileTypeCode code) { return ReaderFor(code, kPane); }
PreviewReader GalleryReaderFor(FileTypeCode code) { return ReaderFor(code, kGallery); }
PreviewReader CommandReaderFor(FileTypeCode code) { return ReaderFor(code, kCommand); }

HBITMAP PreviewForGallery(DWORD renderMode, const char* fileName, const RECT& target) {
    UniqueHandle file(OpenDiskFile(fileName));
    if (!IsOpen(file)) return nullptr;
    const DispatchRow* row = FindRow(IdentifyOpenFile(file.get(), fileName, nullptr, 0));
    if (!row || !(row->places & kGallery)) return nullptr;
    if (row->format) return PreviewFile(*row->format, std::move(file), {renderMode, &target, nullptr, 0});
    file.reset();
    return row->reader(renderMode, fileName, &target, nullptr, 0);
}

const PreviewFormat* FormatOf(FileTypeCode code) {
    const DispatchRow* row = FindRow(code);
    return row ? row->format : nullptr;
}
