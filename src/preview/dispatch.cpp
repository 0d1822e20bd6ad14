#include "preview/dispatch.h"

#include "preview/backup_reader.h"
#include "preview/bitmap_reader.h"
#include "preview/command_reader.h"
#include "preview/comment_readers.h"
#include "preview/dxf_reader.h"
#include "preview/native_reader.h"
#include "preview/text_reader.h"

namespace {

struct DispatchRow {
    FileTypeCode code;
    PreviewReader pane;
    PreviewReader gallery;
};

constexpr DispatchRow kDispatch[] = {
    {FT_LUMOS, ReadNativePreview, ReadNativePreview},
    {FT_QA, ReadNativePreview, ReadNativePreview},
    {FT_QJ, ReadQjComment, ReadQjComment},
    {FT_QF, ReadQfComment, ReadQfComment},
    {FT_DXF, ReadDxfPreview, ReadDxfPreview},
    {FT_EXF, ReadTextDrawing, ReadTextDrawing},
    {FT_DLL, ReadVersionComment, nullptr},
    {FT_EXE, ReadVersionComment, nullptr},
    {FT_BMP, ReadBitmapFile, nullptr},
    {FT_TEXT, ReadTextComment, ReadTextComment},
    {FT_NCPROGRAM, ReadNcComment, ReadNcComment},
    {FT_BACKUP, ReadBackupDrawing, ReadBackupDrawing},
    {FT_COMMAND, PreviewCommandFile, PreviewCommandFile},
};

const DispatchRow* FindRow(FileTypeCode code) {
    for (const DispatchRow& row : kDispatch) {
        if (row.code == code) return &row;
    }
    return nullptr;
}

}  // namespace

PreviewReader PaneReaderFor(FileTypeCode code) {
    const DispatchRow* row = FindRow(code);
    return row ? row->pane : nullptr;
}

PreviewReader GalleryReaderFor(FileTypeCode code) {
    const DispatchRow* row = FindRow(code);
    return row ? row->gallery : nullptr;
}
