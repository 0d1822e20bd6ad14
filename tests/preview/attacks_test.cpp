#include "generate/attacks.h"

#include <gtest/gtest.h>

#include "support/checked_canvas.h"
#include "support/guard_block.h"

void PrintTo(const StrokeCounts& counts, std::ostream* out) {
    *out << "{" << counts.pixels << ", " << counts.lines << ", " << counts.arcs << ", " << counts.marks << ", "
         << counts.texts << "}";
}

// Each ends, whatever is asked of it, and draws what can be seen of it.
TEST(Attacks, DrawWhatCanBeSeen) {
    for (std::size_t i = 0; i < kAttackCount; ++i) {
        const Attack& attack = kAttacks[i];
        const GuardBlock file(attack.write(200'000));
        char text[400] = "";
        Comment comment = {text, sizeof(text), nullptr};
        CheckedCanvas canvas({0, 0, 300, 200}), framed({0, 0, 300, 200});
        framed.textsAsFrames = true;
        attack.decode(file.View(), &comment, &canvas);
        EXPECT_EQ(canvas.counts, attack.drawn) << attack.name;
        EXPECT_LE(file.size, 200'000u) << attack.name;
        comment = {};
        attack.decode(file.View(), &comment, &framed);
        attack.decode(file.View(), &comment, nullptr);
        EXPECT_EQ(framed.counts.texts, 0u) << attack.name;
    }
}
