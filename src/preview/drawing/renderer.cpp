#include "preview/drawing/renderer.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "frame/services.h"
#include "kit/code_page.h"
#include "resources/resource.h"

// Cosmetic pens: one pixel wide, black.
static constexpr DWORD kPenStyles[kPenCount] = {
    PS_SOLID, PS_SOLID, PS_DASH,  PS_DASHDOT, PS_DASHDOTDOT, PS_DOT,   PS_ALTERNATE, PS_SOLID,
    PS_SOLID, PS_SOLID, PS_SOLID, PS_SOLID,   PS_SOLID,      PS_SOLID, PS_SOLID,     PS_SOLID,
};

bool IsSolidPen(unsigned pen) { return kPenStyles[pen] == PS_SOLID; }

UniquePen MakePen(unsigned pen) {
    const LOGBRUSH black = {BS_SOLID, RGB(0, 0, 0), 0};
    return UniquePen(ExtCreatePen(PS_COSMETIC | kPenStyles[pen], 1, &black, 0, nullptr));
}

static constexpr unsigned kShiftJisCodePage = 932;

static GdiStrokes& Gdi(StrokeTarget& target) { return static_cast<GdiStrokes&>(target); }

// The context with the pen selected; one that could not be made leaves the selection as it is.
static HDC WithPen(StrokeTarget& target, unsigned pen) {
    GdiStrokes& gdi = Gdi(target);
    if (!gdi.pens || pen == gdi.selected) return gdi.dc;
    if (!gdi.pens[pen]) gdi.pens[pen] = MakePen(pen);
    if (gdi.pens[pen]) {
        SelectObject(gdi.dc, gdi.pens[pen].get());
        gdi.selected = pen;
    }
    return gdi.dc;
}

static void SetPixelAt(StrokeTarget& target, PixelPoint at) { SetPixelV(Gdi(target).dc, at.x, at.y, RGB(0, 0, 0)); }

static void StrokeLine(StrokeTarget& target, unsigned pen, PixelPoint from, PixelPoint to) {
    const HDC dc = WithPen(target, pen);
    MoveToEx(dc, from.x, from.y, nullptr);
    LineTo(dc, to.x, to.y);
}

static void StrokeArc(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius, PixelPoint from,
                      PixelPoint to) {
    Arc(WithPen(target, pen), centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius, from.x,
        from.y, to.x, to.y);
}

static void FillPolygon(StrokeTarget& target, unsigned pen, const PixelPoint* corners, std::size_t count) {
    static_assert(sizeof(POINT) == sizeof(PixelPoint));
    Polygon(WithPen(target, pen), reinterpret_cast<const POINT*>(corners), static_cast<int>(count));
}

static void FillDot(StrokeTarget& target, unsigned pen, PixelPoint centre, std::int32_t radius) {
    const int right = centre.x + radius + 1;
    Chord(WithPen(target, pen), centre.x - radius, centre.y - radius, right, centre.y + radius + 1, right, centre.y,
          right, centre.y);
}

static void StrokePolyline(StrokeTarget& target, unsigned pen, const PixelPoint* points, std::size_t count) {
    Polyline(WithPen(target, pen), reinterpret_cast<const POINT*>(points), static_cast<int>(count));
}

// Without the line that GDI draws around polygons.
static void FillArea(StrokeTarget& target, const PixelPoint* points, const std::size_t* counts, std::size_t outlines) {
    const HDC dc = Gdi(target).dc;
    std::vector<INT> corners(outlines);
    std::transform(counts, counts + outlines, corners.begin(),
                   [](std::size_t count) { return static_cast<INT>(count); });
    const Selection noLine(dc, GetStockObject(NULL_PEN));
    PolyPolygon(dc, reinterpret_cast<const POINT*>(points), corners.data(), static_cast<int>(outlines));
}

UniqueFont MakeTextFont(const TextStroke& text, bool isShiftJis) {
    LOGFONTA font = {};
    font.lfHeight = -text.height;
    font.lfWidth = text.width;
    font.lfEscapement = text.escapement;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = isShiftJis ? SHIFTJIS_CHARSET : DEFAULT_CHARSET;
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    if (isShiftJis) lstrcpyA(font.lfFaceName, "MS Gothic");
    else CopyResString(IDS_TEXT_FACE, font.lfFaceName, sizeof(font.lfFaceName));
    return UniqueFont(CreateFontIndirectA(&font));
}

// Selects the font for a text, a new one only when none of the last ones fits; false when there is none.
static bool SelectTextFont(HDC dc, const TextStroke& text, bool isShiftJis, TextFonts* fonts) {
    auto& entries = fonts->entries;
    const auto found = std::find_if(std::begin(entries), std::end(entries), [&](const TextFonts::Entry& entry) {
        return entry.font && entry.height == text.height && entry.width == text.width &&
               entry.escapement == text.escapement && entry.isShiftJis == isShiftJis;
    });
    if (found == std::begin(entries)) return true;
    if (found != std::end(entries)) {
        SelectObject(dc, found->font.get());
        std::rotate(std::begin(entries), found, found + 1);
        return true;
    }
    // A drawing has a handful of large fonts. One that wants a new one for each of its texts would take minutes: what
    // comes behind so many characters of new fonts is left out.
    constexpr double kMostArea = 1e9;  // 60 characters of the largest size, 4,000 of 500 pixels
    fonts->area += static_cast<double>(text.height) * text.height * static_cast<double>(text.length);
    if (fonts->area > kMostArea) return false;
    UniqueFont font = MakeTextFont(text, isShiftJis);
    if (!font || !SelectObject(dc, font.get())) return false;
    std::rotate(std::begin(entries), std::end(entries) - 1, std::end(entries));
    // The oldest is not selected and goes.
    entries[0] = {text.height, text.width, text.escapement, isShiftJis, std::move(font)};
    return true;
}

// Whether the system's own code page would make garbage of a text in Shift_JIS.
static bool IsForeign(const TextStroke& text) {
    return GetACP() != kShiftJisCodePage &&
           std::any_of(text.text, text.text + text.length, [](char c) { return static_cast<std::uint8_t>(c) >= 0x80; });
}

static void WriteShiftJis(HDC dc, const TextStroke& text) {
    char16_t characters[256];
    const ByteView bytes = {reinterpret_cast<const std::uint8_t*>(text.text),
                            std::min(text.length, std::size(characters))};
    const std::size_t length = TextToUnicode(kShiftJisCodePage, bytes, characters, std::size(characters));
    TextOutW(dc, text.at.x, text.at.y, reinterpret_cast<const wchar_t*>(characters), static_cast<int>(length));
}

static void WriteText(StrokeTarget& target, const TextStroke& text) {
    const GdiStrokes& gdi = Gdi(target);
    const HDC dc = gdi.dc;
    const bool isForeign = gdi.textsAreShiftJis && IsForeign(text);
    if (!SelectTextFont(dc, text, isForeign, gdi.fonts)) return;
    const int previousExtra = SetTextCharacterExtra(dc, text.extra);
    if (isForeign) WriteShiftJis(dc, text);
    else TextOutA(dc, text.at.x, text.at.y, text.text, static_cast<int>(text.length));
    SetTextCharacterExtra(dc, previousExtra);
}

// ---- Runs of texts

static bool IsPlain(const TextStroke& text) {
    return std::all_of(text.text, text.text + text.length, [](char c) { return c >= ' ' && c <= '~'; });
}

bool TextRun::Take(const TextStroke& text) {
    constexpr std::size_t kMostCharacters = 4096;  // the system takes 8,192 at once
    // Of a slanting text only the system knows how it rounds the steps.
    if (text.escapement != 0 || text.length == 0 || !IsPlain(text)) return false;
    if (text.height != height || text.width != width || characters.size() + text.length > kMostCharacters) Write();
    if (characters.empty()) {
        if (!SelectTextFont(gdi.dc, text, false, gdi.fonts)) return false;
        if (text.height != height || text.width != width) std::fill(std::begin(advances), std::end(advances), 0);
        height = text.height;
        width = text.width;
        first = text.at;
    } else {  // the last character's step leads to this text
        steps[steps.size() - 2] = text.at.x - last.x;
        steps.back() = last.y - text.at.y;
    }
    last = text.at;
    for (std::size_t i = 0; i < text.length; ++i) {
        const auto character = static_cast<std::uint8_t>(text.text[i]);
        INT& advance = advances[character];
        if (advance == 0) GetCharWidth32W(gdi.dc, character, character, &advance);
        if (i > 0) last.x += steps[steps.size() - 2];
        characters.push_back(character);
        steps.insert(steps.end(), {advance + text.extra, 0});
    }
    return true;
}

void TextRun::Write() {
    if (!characters.empty()) {
        ExtTextOutW(gdi.dc, first.x, first.y, ETO_PDY, nullptr, characters.data(), static_cast<UINT>(characters.size()),
                    steps.data());
    }
    characters.clear();
    steps.clear();
}

GdiStrokes::GdiStrokes(HDC context, TextFonts* textFonts, UniquePen* sixteenPens)
    : dc(context), fonts(textFonts), pens(sixteenPens) {
    static_cast<StrokeTarget&>(*this) = {SetPixelAt, StrokeLine,  StrokeArc, StrokePolyline,
                                         FillArea,   FillPolygon, FillDot,   WriteText};
}

int DrawPreviewPrimitive(HDC dc, const ViewTransform& view, PreviewPrimitive& primitive) {
    TextFonts fonts;
    const Selection restore(dc, GetCurrentObject(dc, OBJ_FONT));
    GdiStrokes strokes(dc, &fonts);
    DrawElement(strokes, view, primitive, 0);
    return 1;
}
