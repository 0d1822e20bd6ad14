#include "preview/formats/title_block.h"

#include <cstdio>
#include <cstring>

#include "resources/resource.h"

ByteView TitleField(ByteView file, const TitleSlots& slots, std::size_t field) {
    const std::size_t begin = slots.begin + field * slots.size;
    if (!file.data || file.size < begin + slots.size) return {};
    const std::uint8_t* const text = file.data + begin;
    return {text, strnlen(reinterpret_cast<const char*>(text), slots.maxLength)};
}

void AppendTitleBlock(Comment* comment, ByteView file, const TitleSlots& slots) {
    static constexpr unsigned kLabels[] = {IDS_DRAWING_NAME, IDS_DRAWING_NUMBER, IDS_DESIGNER};
    for (std::size_t i = 0; i < 3; ++i) {
        char label[kLabelSize], block[132];
        CopyLabel(*comment, kLabels[i], label);
        const ByteView field = TitleField(file, slots, i);
        std::snprintf(block, sizeof(block), "%s\r\r\n%-42.*s\r\r\n\r\r\n", label, static_cast<int>(field.size),
                      field.data ? reinterpret_cast<const char*>(field.data) : "");
        AppendComment(comment, block);
    }
}
