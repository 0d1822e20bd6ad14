#include "preview/formats/comments.h"

#include <algorithm>

#include "preview/formats/title_block.h"

bool DecodeTextComment(ByteView file, Comment* comment, DrawingSink*) {
    const std::uint8_t* const end = std::find(file.data, file.data + file.size, '\0');
    AppendComment(comment, ByteView{file.data, static_cast<std::size_t>(end - file.data)});
    return false;
}

static bool DecodeTitles(ByteView file, Comment* comment, const TitleSlots& slots) {
    if (file.size >= slots.begin + 3 * slots.size) AppendTitleBlock(comment, file, slots);
    return false;
}

bool DecodeQjComment(ByteView file, Comment* comment, DrawingSink*) { return DecodeTitles(file, comment, kQjTitle); }
bool DecodeQfComment(ByteView file, Comment* comment, DrawingSink*) { return DecodeTitles(file, comment, kQfTitle); }
