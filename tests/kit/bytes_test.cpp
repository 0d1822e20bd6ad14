#include "kit/bytes.h"

#include <gtest/gtest.h>

#include "support/guard_block.h"

TEST(Bytes, NothingOutsideIsRead) {
    const GuardBlock block("\x01\x02\x03\x04\x05");
    std::uint32_t value = 99;
    for (const std::size_t offset : {std::size_t{2}, std::size_t{6}, SIZE_MAX - 3})
        EXPECT_FALSE(ReadAt(block.View(), offset, &value)) << offset;
    EXPECT_EQ(value, 99u);
    EXPECT_TRUE(ReadAt(block.View(), 1, &value));
    EXPECT_EQ(value, 0x05040302u);
    EXPECT_TRUE(MatchAt(block.View(), 3, "\x04\x05"));
    EXPECT_FALSE(MatchAt(block.View(), 4, "\x05\x06"));
    EXPECT_FALSE(MatchAt(block.View(), SIZE_MAX, "\0\1", 2)) << "the byte before the block is zero";
}
