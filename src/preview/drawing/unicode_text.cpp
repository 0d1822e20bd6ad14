#include "preview/drawing/unicode_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "preview/drawing/strokes.h"

static constexpr double kPi = 3.14159265358979323846;
static constexpr double kUsualCapital = 0.716, kDescent = 0.28;  // in ems; in capitals

static UniqueFont MakeFont(std::int32_t em) {
    LOGFONTW font = {};
    font.lfHeight = -em;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfOutPrecision = OUT_TT_ONLY_PRECIS;  // a bitmap font can be neither turned nor stretched
    font.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    lstrcpyW(font.lfFaceName, L"Arial");
    return UniqueFont(CreateFontIndirectW(&font));
}

static HFONT FontOf(UnicodeFonts* fonts, std::int32_t em) {
    auto& entries = fonts->entries;
    const auto found = std::find_if(std::begin(entries), std::end(entries),
                                    [&](const UnicodeFonts::Entry& entry) { return entry.font && entry.em == em; });
    if (found != std::end(entries)) {
        std::rotate(std::begin(entries), found, found + 1);
        return entries[0].font.get();
    }
    UniqueFont font = MakeFont(em);
    if (!font) return nullptr;
    std::rotate(std::begin(entries), std::end(entries) - 1, std::end(entries));
    entries[0] = {em, std::move(font)};
    return entries[0].font.get();
}

// A capital's height in ems, asked once of a large font.
static double CapitalOf(HDC dc, UnicodeFonts* fonts) {
    if (fonts->capital > 0) return fonts->capital;
    constexpr std::int32_t kLarge = 512;
    fonts->capital = kUsualCapital;
    if (const UniqueFont font = MakeFont(kLarge)) {
        const Selection selected(dc, font.get());
        GLYPHMETRICS shape = {};
        const MAT2 upright = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
        if (GetGlyphOutlineW(dc, L'H', GGO_METRICS, &shape, 0, nullptr, &upright) != GDI_ERROR && shape.gmBlackBoxY) {
            fonts->capital = static_cast<double>(shape.gmBlackBoxY) / kLarge;
        }
    }
    return fonts->capital;
}

void DrawUnicodeText(HDC dc, const ViewTransform& view, const UnicodeText& text, UnicodeFonts* fonts) {
    constexpr std::size_t kMostLength = 2048;
    const double capitalPixels = text.height * view.scaleX;
    const double em = capitalPixels / CapitalOf(dc, fonts);
    if (!(capitalPixels >= 0.5) || !(em <= kMaxTextPixels)) return;
    const auto whole = std::max(static_cast<std::int32_t>(std::lround(em)), 4);
    const HFONT font = FontOf(fonts, whole);
    if (!font) return;
    const Selection selected(dc, font), pen(dc, GetStockObject(BLACK_PEN));
    const auto* const characters = reinterpret_cast<const wchar_t*>(text.text);
    const int length = static_cast<int>(std::min(text.length, kMostLength));
    // What comes behind so many large characters is left out: a file of nothing else would take minutes.
    constexpr double kMostArea = 1e9;  // 60 characters of the largest size, 4,000 of 500 pixels
    fonts->area += em * em * length;
    if (fonts->area > kMostArea) return;
    SIZE size = {};
    if (!GetTextExtentPoint32W(dc, characters, length, &size) || size.cx <= 0) return;

    // From the font's pixels, y downward from the base line, to the canvas's.
    const double scaleY = em / whole;
    const double scaleX = text.fitWidth > 0 ? text.fitWidth * view.scaleX / size.cx : scaleY * text.widthFactor;
    const double slant = std::tan(text.obliqueDegrees * (kPi / 180)) * scaleY;
    const double c = std::cos(text.angleDegrees * (kPi / 180)), s = std::sin(text.angleDegrees * (kPi / 180));
    const double flipX = text.backward ? -1 : 1, flipY = text.upsideDown ? -1 : 1;
    const PixelPoint at = MapPoint(view, text.at.x, text.at.y);
    constexpr std::int32_t kFar = 1 << 24;
    if (at.x < -kFar || at.x > kFar || at.y < -kFar || at.y > kFar || !(scaleX > 1e-3 && scaleX < 1e3)) return;
    XFORM frame;
    frame.eM11 = static_cast<float>(c * scaleX * flipX);
    frame.eM12 = static_cast<float>(-s * scaleX * flipX);
    frame.eM21 = static_cast<float>(s * scaleY * flipY - c * slant * flipX);
    frame.eM22 = static_cast<float>(c * scaleY * flipY + s * slant * flipX);
    frame.eDx = static_cast<float>(at.x);
    frame.eDy = static_cast<float>(at.y);

    const double capital = whole * fonts->capital;  // font pixels
    const double raises[] = {0, kDescent, -0.5, -1};
    const double base = -raises[text.vertical & 3] * capital;  // the base line, downward from the anchor
    const double left = -size.cx * text.horizontal / 2.0;
    const int mode = SetGraphicsMode(dc, GM_ADVANCED);
    if (!SetWorldTransform(dc, &frame)) {
        SetGraphicsMode(dc, mode);
        return;
    }
    const UINT align = SetTextAlign(dc, TA_BASELINE | TA_LEFT);
    const int x = static_cast<int>(std::lround(left)), y = static_cast<int>(std::lround(base));
    TextOutW(dc, x, y, characters, length);
    const auto line = [&](double up) {
        const int lineY = static_cast<int>(std::lround(base - capital * up));
        MoveToEx(dc, x, lineY, nullptr);
        LineTo(dc, x + size.cx, lineY);
    };
    if (text.underlined) line(-0.2);
    if (text.overlined) line(1.2);
    if (text.struckOut) line(0.5);
    SetTextAlign(dc, align);
    ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
    SetGraphicsMode(dc, mode);
}
