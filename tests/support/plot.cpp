#include "support/plot.h"

#include <algorithm>
#include <cstdio>

#include "preview/drawing/raster.h"
#include "support/cases.h"
#include "support/checked_canvas.h"
#include "support/guard_block.h"

namespace {

// Areas, the sixteen pens, points: each has a sheet of its own, and what comes later here lies above the others.
constexpr char kSigns[] = "#0123456789abcdef*";
constexpr std::size_t kSheets = sizeof(kSigns) - 1, kAreas = 0, kPens = 1, kPoints = kSheets - 1;

struct Plot : CheckedCanvas {
    int width, height;
    std::vector<std::uint32_t> bits[kSheets];
    Raster sheets[kSheets];
    std::string texts;

    Plot(int wide, int high, bool frames);
    void Wipe();
    std::string Text() const;
};

Raster& SheetOf(StrokeTarget& target, std::size_t sheet) {
    return static_cast<Plot&>(static_cast<CheckedCanvas&>(target)).sheets[sheet];
}

// A stroke on the sheet of its pen, on which every pen is solid.
template <auto stroke, typename... Rest>
void PutStroke(StrokeTarget& target, unsigned pen, Rest... rest) {
    Raster& sheet = SheetOf(target, kPens + pen);
    (sheet.*stroke)(sheet, 0, rest...);
}

void Plot::Wipe() {
    texts.clear();
    for (auto& pixels : bits) std::fill(pixels.begin(), pixels.end(), 1u);
}

std::string Plot::Text() const {
    std::string text;
    for (std::size_t at = 0; at < bits[0].size(); ++at) {
        std::size_t sheet = kSheets;
        while (sheet > 0 && bits[sheet - 1][at]) --sheet;
        text += sheet ? kSigns[sheet - 1] : '.';
        if (static_cast<int>(at + 1) % width == 0) text += '\n';
    }
    return text + texts;
}

void PutText(StrokeTarget& target, const TextStroke& text) {
    const auto as = [](std::int32_t number) { return " " + std::to_string(number); };
    std::string letters;
    for (const char c : std::string(text.text, text.length)) {
        const bool isPlain = c >= ' ' && c < 127;
        letters += isPlain ? std::string(1, c) : "<" + std::to_string(static_cast<std::uint8_t>(c)) + ">";
    }
    static_cast<Plot&>(static_cast<CheckedCanvas&>(target)).texts += as(text.at.x).substr(1) + as(text.at.y) +
                                                                     as(text.height) + as(text.width) + as(text.extra) +
                                                                     as(text.escapement) + " " + letters + "\n";
}

void DrawLetters(DrawingSink& sink, const UnicodeText& text) {
    static constexpr const char* kAcross[] = {"left", "middle", "right"};
    static constexpr const char* kUp[] = {"base", "bottom", "middle", "top"};
    char line[160];
    const PixelPoint at = MapPoint(sink.view, text.at.x, text.at.y);
    std::snprintf(line, sizeof(line), "%d,%d %s %s %.4g x %.4g (%.4g) %.4g %.4g%s%s%s%s%s ", at.x, at.y,
                  kAcross[text.horizontal], kUp[text.vertical], text.height, text.widthFactor, text.fitWidth,
                  text.angleDegrees, text.obliqueDegrees, text.backward ? " backward" : "",
                  text.upsideDown ? " down" : "", text.underlined ? " under" : "", text.overlined ? " over" : "",
                  text.struckOut ? " struck" : "");
    std::string letters = line;
    for (std::size_t i = 0; i < text.length; ++i) {
        char hex[8];
        std::snprintf(hex, sizeof(hex), "<%04x>", text.text[i]);
        letters += text.text[i] >= ' ' && text.text[i] < 127 ? std::string(1, static_cast<char>(text.text[i])) : hex;
    }
    static_cast<Plot&>(sink).texts += letters + "\n";
}

Plot::Plot(int wide, int high, bool frames) : CheckedCanvas({0, 0, wide, high}), width(wide), height(high) {
    for (std::size_t i = 0; i < kSheets; ++i) {
        bits[i].resize(static_cast<std::size_t>(width * height), 1u);
        OpenRaster(&sheets[i], bits[i].data(), width, height, 32);
    }
    textsAsFrames = frames;
    fit = [](DrawingSink& sink, const WorldRect& extents, FitMode mode) {
        auto& plot = static_cast<Plot&>(sink);
        if (mode == kWipe) plot.Wipe();
        plot.opened = true;
        FitViewTransform(extents, plot.target, &plot.view);
        return true;
    };
    unicodeText = DrawLetters;
    pixel = [](StrokeTarget& target, PixelPoint at) {
        Raster& sheet = SheetOf(target, kPoints);
        sheet.pixel(sheet, at);
    };
    area = [](StrokeTarget& target, const PixelPoint* points, const std::size_t* counts, std::size_t outlines) {
        Raster& sheet = SheetOf(target, kAreas);
        sheet.area(sheet, points, counts, outlines);
    };
    line = PutStroke<&StrokeTarget::line>;
    arc = PutStroke<&StrokeTarget::arc>;
    polyline = PutStroke<&StrokeTarget::polyline>;
    polygon = PutStroke<&StrokeTarget::polygon>;
    dot = PutStroke<&StrokeTarget::dot>;
    StrokeTarget::text = PutText;
}

}  // namespace

std::string PlotOf(Decoder decode, const std::string& file, int width, int height, bool textsAsFrames) {
    Plot plot(width, height, textsAsFrames);
    Comment none;
    const GuardBlock block(file);
    return decode(block.View(), &none, &plot) ? plot.Text() : "";
}

std::string PlotOf(const std::vector<Stroke>& strokes, int width, int height) {
    Plot plot(width, height, false);
    plot.fit(plot, {0, 0, static_cast<double>(width), static_cast<double>(height)}, DrawingSink::kWipe);
    for (Stroke stroke : strokes) plot.draw(plot, stroke.primitive, stroke.pen);
    return plot.Text();
}

std::string KeptPicture(const std::string& name) { return TextBlock("preview/pictures.txt", name) + "\n"; }
