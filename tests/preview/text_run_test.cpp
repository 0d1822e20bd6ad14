#include <gtest/gtest.h>

#include <functional>

#include "frame/services.h"
#include "preview/drawing/canvas.h"
#include "support/drawings.h"
#include "support/picture.h"

static std::string OnCanvas(const std::function<void(Canvas&, PreviewPrimitive&)>& draw) {
    PreviewCancel(1);  // a canvas belongs to a run
    Canvas canvas(0, {0, 0, 160, 120});
    EXPECT_TRUE(canvas.fit(canvas, {0, 0, 160, 120}, DrawingSink::kWipe));
    const Stroke texts[] = {
        TextStrokeOf(20, 100, 16, 8, 0, 0, "iW."),    TextStrokeOf(70, 60, 16, 8, 3, 0, "two of them"),
        TextStrokeOf(5, 110, 16, 8, 0, 0, "i"),       TextStrokeOf(10, 40, 24, 12, 0, 0, "Large"),
        TextStrokeOf(60, 20, 16, 8, -2, 0, "close"),  TextStrokeOf(120, 100, 16, 8, 0, 45, "slants"),
        TextStrokeOf(90, 30, 16, 8, 0, 0, "a\xE9z"),  TextStrokeOf(140, 110, 16, 8, 0, 0, "out of the canvas"),
        TextStrokeOf(-20, 70, 16, 8, 0, 0, "before"), TextStrokeOf(30, 80, 16, 8, 0, 90, "upright"),
    };
    for (const Stroke& text : texts) {
        PreviewPrimitive element = text.primitive;
        draw(canvas, element);
    }
    return TakePicture(TakeCanvasBitmap(&canvas));
}

// What the canvas draws in one call stands where single calls put it.
TEST(TextRun, AsSingleTexts) {
    const std::string single = OnCanvas(
        [](Canvas& canvas, PreviewPrimitive& text) { DrawPreviewPrimitive(canvas.dc.get(), canvas.view, text); });
    EXPECT_TRUE(HasInk(single));
    EXPECT_EQ(OnCanvas([](Canvas& canvas, PreviewPrimitive& text) { canvas.draw(canvas, text, 0); }), single);
}
