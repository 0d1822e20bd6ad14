#include "preview/drawing/strokes.h"

#include <gtest/gtest.h>

#include "support/checked_canvas.h"

// On either side of where a short arc becomes a line, and of how far a text may reach from its corner.
TEST(DrawElement, Limits) {
    const auto countsOf = [](const PreviewPrimitive& drawn) {
        CheckedCanvas canvas({0, 0, 100, 100});
        PreviewPrimitive element = drawn;
        canvas.fit(canvas, {0, 0, 100, 100}, DrawingSink::kWipe);  // a pixel a unit
        canvas.draw(canvas, element, 0);
        return canvas.counts;
    };
    for (const auto& [sweep, lines] : {std::pair(68.7, 1u), {68.8, 0u}}) {  // of a radius of 10: 11.99, 12.01 pixels
        PreviewPrimitive arc;
        arc.SetArc(50, 50, 10, 0, sweep);
        EXPECT_EQ(countsOf(arc).lines, lines) << sweep;
        EXPECT_EQ(countsOf(arc).arcs, 1 - lines) << sweep;
    }
    for (const auto& [x, texts] : {std::pair(-67, 1u), {-69, 0u}}) {
        PreviewPrimitive text;
        text.SetText(x, 50, 2, 2, -2, 0, "abcdefg");
        EXPECT_EQ(countsOf(text).texts, texts) << x;
    }
}
