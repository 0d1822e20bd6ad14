#include "preview/drawing/renderer.h"

#include <algorithm>
#include <vector>

#include "frame/services.h"
#include "kit/code_page.h"
#include "resources/resource.h"

static GdiStrokes& Gdi(StrokeTarget& target) { return static_cast<GdiStrokes&>(target); }

// The context with the pen selected; one that could not be made leaves the selection as it is.
static HDC WithPen(StrokeTarget& target, unsigned pen) {
    GdiStrokes& gdi = Gdi(target);
    if (gdi.pens && pen != gdi.selected && gdi.pens[pen]) {
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

static UniqueFont MakeTextFont(const TextStroke& text) {
    LOGFONTA font = {};
    font.lfHeight = -text.height;
    font.lfWidth = text.width;
    font.lfEscapement = text.escapement;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    CopyResString(IDS_TEXT_FACE, font.lfFaceName, sizeof(font.lfFaceName));
    return UniqueFont(CreateFontIndirectA(&font));
}

// Selects the font for a text, a new one only when the last one does not fit; false when there is none.
static bool SelectTextFont(HDC dc, const TextStroke& text, TextFont* last) {
    if (last->font && last->height == text.height && last->width == text.width && last->escapement == text.escapement) {
        return true;
    }
    UniqueFont font = MakeTextFont(text);
    if (!font || !SelectObject(dc, font.get())) return false;
    *last = {text.height, text.width, text.escapement, std::move(font)};  // the one before is no longer selected
    return true;
}

// Where the system's own code page is another one, a text that is not ASCII would be garbage.
static bool IsForeign(const TextStroke& text) {
    constexpr UINT kShiftJis = 932;
    return GetACP() != kShiftJis &&
           std::any_of(text.text, text.text + text.length, [](char c) { return static_cast<std::uint8_t>(c) >= 0x80; });
}

static void WriteForeignText(HDC dc, const TextStroke& text) {
    constexpr std::size_t kMostLength = 256;
    char16_t characters[kMostLength];
    const ByteView bytes = {reinterpret_cast<const std::uint8_t*>(text.text), std::min(text.length, kMostLength)};
    const std::size_t length = TextToUnicode(932, bytes, characters, kMostLength);
    LOGFONTW font = {};
    font.lfHeight = -text.height;
    font.lfWidth = text.width;
    font.lfEscapement = font.lfOrientation = text.escapement;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = SHIFTJIS_CHARSET;
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    lstrcpyW(font.lfFaceName, L"MS Gothic");
    const UniqueFont made(CreateFontIndirectW(&font));
    if (!made || length == 0) return;
    const Selection selected(dc, made.get());
    const int previousExtra = SetTextCharacterExtra(dc, text.extra);
    TextOutW(dc, text.at.x, text.at.y, reinterpret_cast<const wchar_t*>(characters), static_cast<int>(length));
    SetTextCharacterExtra(dc, previousExtra);
}

static void WriteText(StrokeTarget& target, const TextStroke& text) {
    const HDC dc = Gdi(target).dc;
    if (Gdi(target).shiftJisTexts && IsForeign(text)) return WriteForeignText(dc, text);
    if (!SelectTextFont(dc, text, Gdi(target).font)) return;
    const int previousExtra = SetTextCharacterExtra(dc, text.extra);
    TextOutA(dc, text.at.x, text.at.y, text.text, static_cast<int>(text.length));
    SetTextCharacterExtra(dc, previousExtra);
}

GdiStrokes::GdiStrokes(HDC context, TextFont* textFont, const UniquePen* sixteenPens)
    : StrokeTarget{SetPixelAt, StrokeLine, StrokeArc, StrokePolyline, FillArea, FillPolygon, FillDot, WriteText},
      dc(context),
      font(textFont),
      pens(sixteenPens) {}

int DrawPreviewPrimitive(HDC dc, const ViewTransform& view, PreviewPrimitive& primitive) {
    TextFont font;
    const Selection restore(dc, GetCurrentObject(dc, OBJ_FONT));
    GdiStrokes strokes(dc, &font);
    DrawElement(strokes, view, primitive, 0);
    return 1;
}
