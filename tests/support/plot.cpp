#include "support/plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "preview/drawing/path_strokes.h"
#include "support/guard_block.h"
#include "support/samples.h"

namespace {

struct Plot : StrokeTarget {
    Plot(int wide, int high);
    int width, height;
    std::string grid, texts;

    void Put(int x, int y, char sign) {
        if (x >= 0 && x < width && y >= 0 && y < height) grid[static_cast<std::size_t>(y * (width + 1) + x)] = sign;
    }
};

char SignOf(unsigned pen) { return "0123456789abcdef"[pen]; }

void PutPixel(StrokeTarget& target, PixelPoint at) { static_cast<Plot&>(target).Put(at.x, at.y, '*'); }

void PutLine(StrokeTarget& target, unsigned pen, PixelPoint from, PixelPoint to) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const int steps = static_cast<int>(std::max(std::abs(dx), std::abs(dy)));
    for (int i = 0; i < steps; ++i) {  // the last pixel is left out
        static_cast<Plot&>(target).Put(static_cast<int>(std::floor(from.x + dx * i / steps + 0.5)),
                                       static_cast<int>(std::floor(from.y + dy * i / steps + 0.5)), SignOf(pen));
    }
}

// Every pixel of the plot near the circle that lies between the rays.
void PutArc(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius, PixelPoint from,
            PixelPoint to) {
    auto& plot = static_cast<Plot&>(target);
    const double full = 8 * std::atan(1.0);
    const auto angleOf = [&](PixelPoint at) { return std::atan2(centre.y - at.y, at.x - centre.x); };
    const auto ahead = [&](double angle) { return std::fmod(angle - angleOf(from) + 2 * full, full); };
    const double sweep = ahead(angleOf(to)) == 0 ? full : ahead(angleOf(to));
    for (int y = 0; y < plot.height; ++y) {
        for (int x = 0; x < plot.width; ++x) {
            const double distance = std::hypot(x - centre.x, y - centre.y);
            if (std::abs(distance - radius) < 0.5 && ahead(angleOf({x, y})) <= sweep) plot.Put(x, y, SignOf(pen));
        }
    }
}

void PutPolygon(StrokeTarget& target, unsigned pen, const PixelPoint* corners, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) PutLine(target, pen, corners[i], corners[(i + 1) % count]);
}

void PutDot(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius) {
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x) {
            if (x * x + y * y <= radius * radius)
                static_cast<Plot&>(target).Put(centre.x + x, centre.y + y, SignOf(pen));
        }
    }
}

void PutText(StrokeTarget& target, const TextStroke& text) {
    const auto as = [](std::int32_t number) { return " " + std::to_string(number); };
    std::string letters;
    for (const char c : std::string(text.text, text.length)) {
        const bool isPlain = c >= ' ' && c < 127;
        letters += isPlain ? std::string(1, c) : "<" + std::to_string(static_cast<std::uint8_t>(c)) + ">";
    }
    static_cast<Plot&>(target).texts += as(text.at.x).substr(1) + as(text.at.y) + as(text.height) + as(text.width) +
                                        as(text.extra) + as(text.escapement) + " " + letters + "\n";
}

void PutPolyline(StrokeTarget& target, unsigned pen, const PixelPoint* points, std::size_t count) {
    for (std::size_t i = 0; i + 1 < count; ++i) PutLine(target, pen, points[i], points[i + 1]);
}

// Every pixel whose middle an odd number of edges lies to the left of.
void PutArea(StrokeTarget& target, const PixelPoint* points, const std::size_t* counts, std::size_t outlines) {
    auto& plot = static_cast<Plot&>(target);
    for (int y = 0; y < plot.height; ++y) {
        for (int x = 0; x < plot.width; ++x) {
            bool inside = false;
            const PixelPoint* outline = points;
            for (std::size_t i = 0; i < outlines; outline += counts[i++]) {
                for (std::size_t k = 0; k < counts[i]; ++k) {
                    const PixelPoint a = outline[k], b = outline[(k + 1) % counts[i]];
                    const bool crosses = (a.y <= y) != (b.y <= y);
                    if (crosses && x > a.x + static_cast<double>(b.x - a.x) * (y - a.y) / (b.y - a.y)) inside = !inside;
                }
            }
            if (inside) plot.Put(x, y, '#');
        }
    }
}

Plot::Plot(int wide, int high)
    : StrokeTarget{PutPixel, PutLine, PutArc, PutPolyline, PutArea, PutPolygon, PutDot, PutText},
      width(wide),
      height(high) {
    for (int y = 0; y < height; ++y) grid += std::string(static_cast<std::size_t>(width), '.') + "\n";
}

const std::atomic<std::int32_t> kGoOn = 1;

struct PlotSink : DrawingSink {
    PlotSink(int wide, int high, bool frames);
    Plot empty, plot;
};

bool Fit(DrawingSink& sink, const WorldRect& extents, DrawingSink::FitMode mode) {
    auto& self = static_cast<PlotSink&>(sink);
    if (mode == DrawingSink::kWipe) self.plot = self.empty;
    FitViewTransform(extents, {0, 0, self.plot.width, self.plot.height}, &sink.view);
    return true;
}

void Draw(DrawingSink& sink, PreviewPrimitive& element, unsigned pen) {
    DrawElement(static_cast<PlotSink&>(sink).plot, sink.view, element, pen % kPenCount);
}

void DrawPath(DrawingSink& sink, const Path& path, unsigned pen) {
    std::vector<PixelPoint> scratch;
    const auto draw = path.filled ? FillOutlines : DrawOutlines;
    draw(static_cast<PlotSink&>(sink).plot, sink.view, path.points, path.counts, path.outlines, pen, &scratch);
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
    static_cast<PlotSink&>(sink).plot.texts += letters + "\n";
}

PlotSink::PlotSink(int wide, int high, bool frames)
    : DrawingSink{Fit, Draw, DrawPath, DrawLetters, {}, frames, &kGoOn}, empty(wide, high), plot(empty) {}

}  // namespace

std::string PlotOf(Decoder decode, const std::string& file, int width, int height, bool textsAsFrames) {
    PlotSink sink(width, height, textsAsFrames);
    Comment none;
    const GuardBlock block(file);
    return decode(block.View(), &none, &sink) ? sink.plot.grid + sink.plot.texts : "";
}

std::string PlotOf(const std::vector<Stroke>& strokes, int width, int height) {
    PlotSink sink(width, height, false);
    sink.fit(sink, {0, 0, static_cast<double>(width), static_cast<double>(height)}, DrawingSink::kWipe);
    for (Stroke stroke : strokes) sink.draw(sink, stroke.primitive, stroke.pen);
    return sink.plot.grid + sink.plot.texts;
}

std::string KeptPicture(const std::string& name) {
    const std::string all = "\n" + ReadWholeFile(CheckoutFolder() + "/tests/preview/pictures.txt") + "[";
    const std::string head = "\n[" + name + "]\n";
    const std::size_t at = all.find(head);
    if (at == std::string::npos) return "no picture of that name";
    const std::size_t begin = at + head.size();
    return all.substr(begin, all.find("\n[", begin) + 1 - begin);
}
