#include "preview/drawing/unicode_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <tuple>
#include <utility>

#include "preview/drawing/strokes.h"

static constexpr double kPi = 3.14159265358979323846;
static constexpr double kUsualCapital = 0.716;  // in ems

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

// Null when there is none. The font that was asked for before this one stays among the entries.
static UnicodeTexts::Entry* EntryOf(UnicodeTexts* texts, std::int32_t em) {
    auto& entries = texts->entries;
    const auto found = std::find_if(std::begin(entries), std::end(entries),
                                    [&](const UnicodeTexts::Entry& entry) { return entry.font && entry.em == em; });
    if (found != std::end(entries)) {
        if (found != std::begin(entries)) std::rotate(std::begin(entries), found, found + 1);
        return entries;
    }
    UniqueFont font = MakeFont(em);
    if (!font) return nullptr;
    std::rotate(std::begin(entries), std::end(entries) - 1, std::end(entries));
    entries[0] = {em, {}, std::move(font)};
    return entries;
}

// Font pixels. The font is asked for each character once: to select it takes as long as the text.
static int WidthOf(HDC dc, UnicodeTexts::Entry* entry, const wchar_t* characters, int length) {
    std::optional<Selection> selected;
    int width = 0;
    for (int i = 0; i < length; ++i) {
        const wchar_t c = characters[i];
        const bool isPlain = c >= ' ' && c <= '~';  // how others are combined only the system knows
        INT* const advance = isPlain ? &entry->advances[c - ' '] : nullptr;
        if (!isPlain || *advance == 0) {
            if (!selected) selected.emplace(dc, entry->font.get());
            SIZE size = {};
            if (!isPlain) return GetTextExtentPoint32W(dc, characters, length, &size) ? size.cx : 0;
            GetCharWidth32W(dc, c, c, advance);
        }
        width += *advance;
    }
    return width;
}

// A capital's height in ems, asked once of a large font.
static double CapitalOf(HDC dc, UnicodeTexts* texts) {
    if (texts->capital > 0) return texts->capital;
    constexpr std::int32_t kLarge = 512;
    texts->capital = kUsualCapital;
    if (const UniqueFont font = MakeFont(kLarge)) {
        const Selection selected(dc, font.get());
        GLYPHMETRICS shape = {};
        const MAT2 upright = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
        if (GetGlyphOutlineW(dc, L'H', GGO_METRICS, &shape, 0, nullptr, &upright) != GDI_ERROR && shape.gmBlackBoxY) {
            texts->capital = static_cast<double>(shape.gmBlackBoxY) / kLarge;
        }
    }
    return texts->capital;
}

bool KeepUnicodeText(HDC dc, const ViewTransform& view, const UnicodeText& text, UnicodeTexts* texts) {
    constexpr std::size_t kMostLength = 2048, kMostTexts = 4096, kMostCharacters = 1 << 17;
    const double capitalPixels = text.height * view.scaleX;
    const double em = capitalPixels / CapitalOf(dc, texts);
    if (!(capitalPixels >= 0.5) || !(em <= kMaxTextPixels)) return false;
    const auto whole = std::max(static_cast<std::int32_t>(std::lround(em)), 4);
    UnicodeTexts::Entry* const entry = EntryOf(texts, whole);
    if (!entry) return false;
    const auto* const characters = reinterpret_cast<const wchar_t*>(text.text);
    const int length = static_cast<int>(std::min(text.length, kMostLength));
    // What comes behind so many large characters is left out: a file of nothing else would take minutes.
    constexpr double kMostArea = 1e9;  // 60 characters of the largest size, 4,000 of 500 pixels
    texts->area += em * em * length;
    if (texts->area > kMostArea) return false;
    const int width = WidthOf(dc, entry, characters, length);
    if (width <= 0) return false;

    const double scaleY = em / whole;
    const double scaleX = text.fitWidth > 0 ? text.fitWidth * view.scaleX / width : scaleY * text.widthFactor;
    const double slant = std::tan(text.obliqueDegrees * (kPi / 180)) * scaleY;
    const double c = std::cos(text.angleDegrees * (kPi / 180)), s = std::sin(text.angleDegrees * (kPi / 180));
    const double flipX = text.backward ? -1 : 1, flipY = text.upsideDown ? -1 : 1;
    const PixelPoint at = MapPoint(view, text.at.x, text.at.y);
    constexpr std::int32_t kFar = 1 << 24;
    if (at.x < -kFar || at.x > kFar || at.y < -kFar || at.y > kFar || !(scaleX > 1e-3 && scaleX < 1e3)) return false;
    XFORM frame;
    frame.eM11 = static_cast<float>(c * scaleX * flipX);
    frame.eM12 = static_cast<float>(-s * scaleX * flipX);
    frame.eM21 = static_cast<float>(s * scaleY * flipY - c * slant * flipX);
    frame.eM22 = static_cast<float>(c * scaleY * flipY + s * slant * flipX);
    frame.eDx = static_cast<float>(at.x);
    frame.eDy = static_cast<float>(at.y);
    if (!std::isfinite(frame.eM11 + frame.eM12 + frame.eM21 + frame.eM22)) return false;

    const double capital = whole * texts->capital;  // font pixels
    const double raises[] = {0, kTextDescent, -0.5, -1};
    const double base = -raises[text.vertical & 3] * capital;  // the base line, downward from the anchor
    const double left = -width * text.horizontal / 2.0;
    texts->waiting.push_back({whole, frame, static_cast<int>(std::lround(left)), base, width, text.underlined,
                              text.overlined, text.struckOut, texts->characters.size(), length});
    texts->characters.append(text.text, static_cast<std::size_t>(length));
    return texts->waiting.size() >= kMostTexts || texts->characters.size() >= kMostCharacters;
}

static void DrawOne(HDC dc, const UnicodeTexts& texts, const UnicodeTexts::Waiting& text) {
    const auto* const characters = reinterpret_cast<const wchar_t*>(texts.characters.data() + text.offset);
    TextOutW(dc, text.x, static_cast<int>(std::lround(text.base)), characters, text.length);
    const auto line = [&](double up) {  // capitals
        const int y = static_cast<int>(std::lround(text.base - text.em * texts.capital * up));
        MoveToEx(dc, text.x, y, nullptr);
        LineTo(dc, text.x + text.width, y);
    };
    if (text.underlined) line(-0.2);
    if (text.overlined) line(1.2);
    if (text.struckOut) line(0.5);
}

void DrawUnicodeTexts(HDC dc, const DrawingSink& run, UnicodeTexts* texts) {
    std::vector<UnicodeTexts::Waiting>& waiting = texts->waiting;
    const auto fontOf = [](const UnicodeTexts::Waiting& text) {
        return std::tie(text.em, text.frame.eM11, text.frame.eM12, text.frame.eM21, text.frame.eM22);
    };
    std::stable_sort(waiting.begin(), waiting.end(),
                     [&](const auto& a, const auto& b) { return fontOf(a) < fontOf(b); });
    const Selection font(dc, GetCurrentObject(dc, OBJ_FONT)), pen(dc, GetStockObject(BLACK_PEN));
    const int mode = SetGraphicsMode(dc, GM_ADVANCED);
    const UINT align = SetTextAlign(dc, TA_BASELINE | TA_LEFT);
    std::int32_t selected = 0;
    for (const UnicodeTexts::Waiting& text : waiting) {
        if (!run.MayContinue()) break;
        if (text.em != selected) {
            const UnicodeTexts::Entry* const entry = EntryOf(texts, text.em);
            if (!entry) break;
            SelectObject(dc, entry->font.get());
            selected = text.em;
        }
        if (SetWorldTransform(dc, &text.frame)) DrawOne(dc, *texts, text);
    }
    waiting.clear();
    texts->characters.clear();
    SetTextAlign(dc, align);
    ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
    SetGraphicsMode(dc, mode);
}
