#include "preview/drawing/renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

#include "frame/services.h"
#include "preview/drawing/canvas.h"
#include "preview/drawing/placeholder.h"
#include "resources/resource.h"
#include "support/drawings.h"
#include "support/picture.h"

// What `draw` leaves on a canvas of as many pixels as the world has units; (x, y) is the pixel of column x + 0.5 and of
// row height - (y - 0.5), both cut.
static std::string OnCanvas(int width, int height, const std::function<void(Canvas&)>& draw) {
    PreviewCancel(1);  // a canvas belongs to a run
    Canvas canvas(0, {0, 0, width, height});
    const WorldRect sheet = {0, 0, static_cast<double>(width), static_cast<double>(height)};
    EXPECT_TRUE(canvas.fit(canvas, sheet, DrawingSink::kWipe));
    draw(canvas);
    return TakePicture(TakeCanvasBitmap(&canvas));
}

// As a reader draws it, and on a device context whose font is its owner's.
TEST(DrawPreviewPrimitive, AsTheCanvasDrawsIt) {
    const Stroke strokes[] = {
        LineStroke(0, 2, 3.7, 20, 9.7),
        LineStroke(0, 30, 3.7, 120, 13.7, EndMarkWord(kMarkArrow, kMarkDot)),
        PointStroke(2, 3.7),
        ArcStroke(0, 112, 100.7, 14, 0, 360),
        ArcStroke(0, 104, 70.7, 12, 330, 30),
        // texts, which the canvas draws in one call where it can
        TextStrokeOf(20, 100, 16, 8, 0, 0, "iW."),
        TextStrokeOf(70, 60, 16, 8, 3, 0, "two of them"),
        TextStrokeOf(5, 110, 16, 8, 0, 0, "i"),
        TextStrokeOf(10, 40, 24, 12, 0, 0, "Large"),
        TextStrokeOf(60, 20, 16, 8, -2, 0, "close"),
        TextStrokeOf(120, 100, 16, 8, 0, 45, "slants"),
        TextStrokeOf(90, 30, 16, 8, 0, 0, "a\xE9z"),
        TextStrokeOf(140, 110, 16, 8, 0, 0, "out of the canvas"),
        TextStrokeOf(-20, 70, 16, 8, 0, 0, "before"),
        TextStrokeOf(30, 80, 16, 8, 0, 90, "upright"),
    };
    const auto onDc = [&](Canvas& canvas) {
        const HGDIOBJ font = GetCurrentObject(canvas.dc.get(), OBJ_FONT);
        for (Stroke s : strokes) EXPECT_EQ(DrawPreviewPrimitive(canvas.dc.get(), canvas.view, s.primitive), 1);
        EXPECT_EQ(GetCurrentObject(canvas.dc.get(), OBJ_FONT), font);
    };
    const std::string expected = OnCanvas(160, 120, [&](Canvas& canvas) {
        for (Stroke s : strokes) canvas.draw(canvas, s.primitive, 0);
    });
    EXPECT_TRUE(HasInk(expected));
    EXPECT_EQ(OnCanvas(160, 120, onDc), expected);
}

TEST(DrawPreviewPrimitive, TextAsGdiDrawsIt) {
    PreviewPrimitive text = TextStrokeOf(6, 3.7, 8, 5, 0, 90.06, "AL").primitive;
    const std::string expected = OnCanvas(24, 20, [](Canvas& canvas) {
        char face[LF_FACESIZE];
        CopyResString(IDS_TEXT_FACE, face, sizeof(face));
        const UniqueFont font(
            CreateFontA(-8, 5, 900, 0, 400, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, FIXED_PITCH | FF_MODERN, face));
        const Selection selected(canvas.dc.get(), font.get());
        TextOutA(canvas.dc.get(), 6, 17, "AL", 2);
    });
    EXPECT_TRUE(HasInk(expected));
    EXPECT_EQ(OnCanvas(24, 20, [&](Canvas& canvas) { canvas.draw(canvas, text, 0); }), expected);
}

TEST(Canvas, PensAndBitmaps) {
    std::set<std::string> lines;
    for (unsigned pen = 0; pen < 18; ++pen) {
        PreviewPrimitive line = LineStroke(pen, 0, 2.7, 80, 2.7).primitive;
        lines.insert(OnCanvas(80, 4, [&](Canvas& canvas) { canvas.draw(canvas, line, pen); }));
    }
    EXPECT_EQ(lines.size(), 6u) << "a solid and five dashed ones";
    for (const DWORD mode : {0ul, kRenderColor}) {
        const std::string picture = TakePicture(CreatePlaceholderBitmap(mode, "####", {0, 0, 90, 30}));
        EXPECT_EQ(picture.size(), 91u * 30);
        EXPECT_FALSE(HasInk(picture.substr(0, 91 * 8) + picture.substr(91 * 22))) << "in the middle";
        EXPECT_TRUE(HasInk(picture));
    }
    EXPECT_FALSE(CreatePlaceholderBitmap(kRenderColor, "x", {0, 0, 0x7FFFFFFF, 0x7FFFFFFF}));
}

// Where texts of another look have their ink, and that their device context is left as it was.
TEST(UnicodeText, LiesWhereItIsPut) {
    const auto columns = [](int horizontal, double fitWidth, const char16_t* letters, bool struckOut) {
        const std::string picture = OnCanvas(160, 40, [&](Canvas& canvas) {
            const HDC dc = canvas.dc.get();
            const UINT align = GetTextAlign(dc);
            const UnicodeText text = {{80, 20}, 10,    1,     fitWidth, 0,         0,       horizontal, 0,
                                      false,    false, false, false,    struckOut, letters, 3};
            canvas.unicodeText(canvas, text);
            EXPECT_TRUE(GetTextAlign(dc) == align && GetGraphicsMode(dc) == GM_COMPATIBLE);
        });
        std::pair<int, int> ink = {160, 0};  // the first column and the last one
        for (int at = 0; at < static_cast<int>(picture.size()); ++at) {
            if (picture[static_cast<std::size_t>(at)] != '#') continue;
            ink = {std::min(ink.first, at % 161), std::max(ink.second, at % 161)};
        }
        return ink;
    };
    const auto left = columns(0, 0, u"HHH", false), middle = columns(1, 0, u"HHH", false);
    const auto right = columns(2, 0, u"HHH", false), fitted = columns(0, 60, u"HHH", false);
    EXPECT_TRUE(left.first >= 80 && right.second <= 81) << left.first << " " << right.second;
    EXPECT_NEAR(middle.first + middle.second, 160, 10);  // a letter does not fill its width
    EXPECT_NEAR(fitted.second, 140, 10);
    EXPECT_GT(columns(0, 0, u"   ", true).second, 80) << "a line through blanks";
}
