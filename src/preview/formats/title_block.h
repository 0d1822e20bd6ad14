// The title block of a drawing: name, number and designer in three slots of the file's head.
#pragma once

#include <cstddef>

#include "kit/bytes.h"
#include "preview/formats/comment.h"

// Three slots, one behind the other; a field ends at its first zero byte and never outside its slot.
struct TitleSlots {
    std::size_t begin;      // of the first slot, from the start of the file
    std::size_t size;       // of each slot
    std::size_t maxLength;  // of a field: native slots keep their last byte for the zero
};

constexpr TitleSlots kNativeTitle = {106, 42, 41};
constexpr TitleSlots kQjTitle = {144, 42, 41};
constexpr TitleSlots kQfTitle = {576, 48, 47};
constexpr TitleSlots kBackupTitle = {284, 42, 42};

// Field 0 to 2, without its zero; empty when the file is too short for its slot.
ByteView TitleField(ByteView file, const TitleSlots& slots, std::size_t field);

// Appends the three blocks, each a label in the user's language and the field padded to 42 columns.
void AppendTitleBlock(Comment* comment, ByteView file, const TitleSlots& slots);
