#include "preview/dispatch.h"

#include "preview/bitmap_reader.h"
#include "preview/comment_readers.h"
#include "preview/dxf_reader.h"

namespace {

struct DispatchRow {
    FileTypeCode code;
    PreviewReader pane;
    PreviewReader gallery;
};

constexpr DispatchRow kDispatch[] = {
    {FT_DXF, ReadDxfPreview, ReadDxfPreview},    {FT_DLL, ReadVersionComment, nullptr},
    {FT_EXE, ReadVersionComment, nullptr},       {FT_BMP, ReadBitmapFile, nullptr},
    {FT_TEXT, ReadTextComment, ReadTextComment},
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
