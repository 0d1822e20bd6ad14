#include "kit/bytes.h"

#include <gtest/gtest.h>

#include "support/guard_block.h"

TEST(Bytes, ReadAtStaysInside) {
    const GuardBlock block("\x01\x02\x03\x04\x05");
    std::uint32_t value = 99;
    EXPECT_TRUE(ReadAt(block.View(), 1, &value));
    EXPECT_EQ(value, 0x05040302u);
    value = 99;
    for (const std::size_t offset : {std::size_t{2}, std::size_t{5}, std::size_t{6}, SIZE_MAX, SIZE_MAX - 3})
        EXPECT_FALSE(ReadAt(block.View(), offset, &value)) << offset;
    EXPECT_EQ(value, 99u);
}

TEST(Bytes, MatchAtStaysInside) {
    const GuardBlock block("GRID");
    EXPECT_TRUE(MatchAt(block.View(), 1, "RID"));
    EXPECT_FALSE(MatchAt(block.View(), 1, "RIM"));
    EXPECT_FALSE(MatchAt(block.View(), 2, "RID"));
    EXPECT_FALSE(MatchAt(block.View(), SIZE_MAX, "\0GR", 3)) << "the byte before the block is zero";
}
