// Texts of several lines with codes inside, and MTEXT, which is such a text. Codes that change what a small picture
// shows are followed (height, width, slant, stacked fractions, alignment), fonts and colours are taken out.
#include <algorithm>
#include <cmath>
#include <string>

#include "kit/numbers.h"
#include "preview/formats/full_dxf_box.h"
#include "preview/formats/full_dxf_decoder.h"

namespace {

using Look = DxfParagraphs::Look;

constexpr std::size_t kMostCharacters = 1 << 15, kMostLooks = 4096;
constexpr char16_t kBreak = u'\n', kColumnBreak = u'\v';
constexpr double kFractionHeight = 0.7, kLineDistance = 5.0 / 3;
enum Level { kPlain = 0, kUpper = 1, kLower = 2, kLowerWithBar = 3 };

// ---- Codes

struct CodeReader {
    DxfDecoder& dxf;
    const std::u16string& s;
    std::size_t at = 0;
    Look look = {1, 1, 0, -1, kPlain, false, false, false};
    std::vector<Look> outer = {};  // of the braces that are open
    double textHeight = 1;

    void Read();

private:
    void Put(char16_t c);
    void PutTab();
    void TakeCode();
    void TakeNumberCode(char16_t code, std::u16string_view text);
    void TakeFraction(std::u16string_view parts);
    bool TakePercent();
    void PutCode(char16_t code);
    std::u16string_view Parameter();
    std::u16string_view NumberParameter();
};

void CodeReader::Put(char16_t c) {
    DxfParagraphs& out = dxf.paragraphs;
    if (out.characters.size() >= kMostCharacters) return;
    const auto same = [&](const Look& a) {
        return a.height == look.height && a.widthFactor == look.widthFactor &&
               a.obliqueDegrees == look.obliqueDegrees && a.align == look.align && a.level == look.level &&
               a.underlined == look.underlined && a.overlined == look.overlined && a.struckOut == look.struckOut;
    };
    if (out.looks.empty() || (!same(out.looks.back()) && out.looks.size() < kMostLooks)) out.looks.push_back(look);
    out.characters.push_back(c);
    out.lookOf.push_back(static_cast<std::uint16_t>(out.looks.size() - 1));
}

void CodeReader::PutTab() {
    for (int i = 0; i < 4; ++i) Put(u' ');
}

// What is no code after all is shown as it stands.
void CodeReader::PutCode(char16_t code) {
    Put(u'\\');
    Put(code);
}

// Up to the semicolon that ends a code; an unended one reaches to the end.
std::u16string_view CodeReader::Parameter() {
    const std::size_t end = std::min(s.find(u';', at), s.size());
    const std::u16string_view out = std::u16string_view(s).substr(at, end - at);
    at = std::min(end + 1, s.size());
    return out;
}

// A number, and the semicolon behind it where there is one: not every writer ends these codes.
std::u16string_view CodeReader::NumberParameter() {
    const std::size_t begin = at;
    while (at < s.size() && ((s[at] >= u'0' && s[at] <= u'9') || s[at] == u'.' || s[at] == u'+' || s[at] == u'-')) ++at;
    if (at == begin) return {};
    if (at < s.size() && (s[at] == u'x' || s[at] == u'X')) ++at;
    const std::u16string_view out = std::u16string_view(s).substr(begin, at - begin);
    if (at < s.size() && s[at] == u';') ++at;
    return out;
}

double NumberIn(std::u16string_view text) {
    char digits[32];
    std::size_t count = 0;
    for (; count < text.size() && count < sizeof(digits) && text[count] < 128; ++count) {
        digits[count] = static_cast<char>(text[count]);
    }
    return ParseDecimal({reinterpret_cast<const std::uint8_t*>(digits), count});
}

void CodeReader::TakeFraction(std::u16string_view parts) {
    std::size_t bar = parts.find_first_of(u"^/#");
    if (bar == std::u16string_view::npos) bar = parts.size();
    const char16_t kind = bar < parts.size() ? parts[bar] : u'^';
    const Look before = look;
    const bool diagonal = kind == u'#';
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i == bar) {
            if (diagonal) Put(u'/');
            continue;
        }
        if (parts[i] == u' ' && i == bar + 1) continue;
        if (!diagonal) {
            look.level = i < bar ? kUpper : kind == u'/' ? kLowerWithBar : kLower;
            look.height = before.height * kFractionHeight;
        }
        Put(parts[i]);
    }
    look = before;
}

void CodeReader::TakeNumberCode(char16_t code, std::u16string_view text) {
    constexpr double kMostFactor = 1000;
    const double value = NumberIn(text);
    const bool relative = text.back() == u'x' || text.back() == u'X';
    const auto isFactor = [](double factor) { return factor > 1 / kMostFactor && factor < kMostFactor; };
    const double height = relative ? look.height * value : value / textHeight;
    if (code == u'H' && isFactor(height)) look.height = height;
    if (code == u'W' && isFactor(value)) look.widthFactor = value;
    if (code == u'Q') look.obliqueDegrees = std::clamp(value, -85.0, 85.0);
}

void CodeReader::TakeCode() {
    constexpr std::size_t kLongestFont = 256;
    const char16_t code = s[at++];
    switch (code) {
        case u'P':
        case u'X': Put(kBreak); break;
        case u'N': Put(kColumnBreak); break;
        case u'~': Put(u'\u00A0'); break;
        case u'\\':
        case u'{':
        case u'}': Put(code); break;
        case u'L': look.underlined = true; break;
        case u'l': look.underlined = false; break;
        case u'O': look.overlined = true; break;
        case u'o': look.overlined = false; break;
        case u'K': look.struckOut = true; break;
        case u'k': look.struckOut = false; break;
        case u'F':
        case u'f':
            if (std::u16string_view(s).substr(at, kLongestFont).find(u';') == std::u16string_view::npos) PutCode(code);
            else Parameter();
            break;
        case u'A':
        case u'C':
        case u'c':
        case u'T':
        case u'H':
        case u'W':
        case u'Q': {
            const std::u16string_view text = NumberParameter();
            if (text.empty()) PutCode(code);
            else TakeNumberCode(code, text);
            break;
        }
        case u'p': {
            const std::u16string_view text = Parameter();
            const std::size_t q = text.find(u'q');
            const char16_t align = q == std::u16string_view::npos || q + 1 >= text.size() ? u'?' : text[q + 1];
            if (align == u'l' || align == u'j') look.align = 0;
            if (align == u'c') look.align = 1;
            if (align == u'r') look.align = 2;
            break;
        }
        case u'S': TakeFraction(Parameter()); break;
        default: PutCode(code);
    }
}

bool CodeReader::TakePercent() {
    if (s.compare(at, 2, u"%%") != 0) return false;
    std::u16string code = s.substr(at, s.size() - at >= 5 && s[at + 2] >= '0' && s[at + 2] <= '9' ? 5 : 3);
    const std::size_t length = code.size();
    ResolveLineCodes(&code);
    if (code.size() >= length) return false;
    for (const char16_t c : code) Put(c);
    at += length;
    return true;
}

void CodeReader::Read() {
    constexpr std::size_t kMostOuter = 64;
    while (at < s.size() && dxf.MayContinue()) {
        const char16_t c = s[at];
        const char16_t next = at + 1 < s.size() ? s[at + 1] : u'\0';
        if (c == u'\\' && next) {
            ++at;
            TakeCode();
        } else if (c == u'{' || c == u'}') {
            ++at;
            if (c == u'{' && outer.size() < kMostOuter) outer.push_back(look);
            if (c == u'}' && !outer.empty()) {
                look = outer.back();
                outer.pop_back();
            }
        } else if (c == u'^' && next) {
            at += 2;
            if (next == u'J') Put(kBreak);
            else if (next == u' ') Put(u'^');
            else if (next == u'I') PutTab();
            else if (next != u'M') Put(c), --at;
        } else if (c == u'%' && TakePercent()) {
        } else {
            ++at;
            if (c >= u' ') Put(c);
            else if (c == u'\t') PutTab();
        }
    }
}

// ---- Lines

double WidthOf(const DxfParagraphs& p, std::size_t i) {
    const Look& look = p.looks[p.lookOf[i]];
    return WidthOfText(&p.characters[i], 1, look.height) * look.widthFactor;
}

double HeightOf(const Look& look) { return look.level == kPlain ? look.height : look.height / kFractionHeight; }

bool IsWideCharacter(char16_t c) { return c >= 0x2E80 && c < 0xD800; }

// The lines between breaks, wrapped where they grow wider than `width` (in heights of the text; 0: never).
void FindLines(DxfParagraphs* p, double width) {
    constexpr std::size_t kMostLines = 4096;
    std::size_t begin = 0, breakAt = 0;
    double line = 0, sinceBreak = 0;
    double upper = 0;  // of an open fraction
    bool newColumn = false;
    p->lines.clear();
    const auto end = [&](std::size_t to, std::size_t next) {
        if (p->lines.size() < kMostLines) p->lines.push_back({begin, to, 0, newColumn, 0, 0});
        begin = breakAt = next;
        newColumn = false;
    };
    for (std::size_t i = 0; i < p->characters.size(); ++i) {
        const char16_t c = p->characters[i];
        if (c == kBreak || c == kColumnBreak) {
            end(i, i + 1);
            newColumn = c == kColumnBreak;
            line = sinceBreak = 0;
            continue;
        }
        if (c == u' ') {
            breakAt = i + 1;
            sinceBreak = 0;
        } else if (IsWideCharacter(c)) {
            breakAt = i;
            sinceBreak = 0;
        }
        double advance = WidthOf(*p, i);
        const int level = p->looks[p->lookOf[i]].level;
        if (level == kUpper) upper += advance;
        else if (level == kPlain) upper = 0;
        else {  // the lower part stands under the upper one
            const double under = std::min(upper, advance);
            upper -= under;
            advance -= under;
        }
        line += advance;
        sinceBreak += advance;
        if (width > 0 && line > width * 1.0001 && breakAt > begin && c != u' ') {
            std::size_t to = breakAt;
            while (to > begin && p->characters[to - 1] == u' ') --to;
            end(to, breakAt);
            line = sinceBreak;
        }
    }
    end(p->characters.size(), p->characters.size());
    for (DxfParagraphs::Line& row : p->lines) {
        for (std::size_t i = row.begin; i < row.end; ++i)
            row.height = std::max(row.height, HeightOf(p->looks[p->lookOf[i]]));
        if (row.begin == row.end) {
            const std::size_t at = std::min(row.begin, p->lookOf.size() - 1);
            row.height = p->lookOf.empty() ? 1 : HeightOf(p->looks[p->lookOf[at]]);
        }
    }
}

// ---- Drawing

struct Frame {
    DxfDecoder& dxf;
    const DxfParagraphPlace& place;

    // A place in the text, in heights of its capitals.
    Vector3 At(double x, double y) const {
        const Vector3 &o = place.place.at, &a = place.place.along, &u = place.place.up;
        x *= place.height, y *= place.height;
        return {o.x + a.x * x + u.x * y, o.y + a.y * x + u.y * y, o.z + a.z * x + u.z * y};
    }
    void DrawRun(std::size_t begin, std::size_t end, double x, double y, int horizontal, double fitWidth) const;
    void DrawLine(const DxfParagraphs::Line& line, int horizontal) const;
};

void Frame::DrawRun(std::size_t begin, std::size_t end, double x, double y, int horizontal, double fitWidth) const {
    const Look& look = dxf.paragraphs.looks[dxf.paragraphs.lookOf[begin]];
    UnicodeText text = {};
    text.horizontal = horizontal;
    text.text = dxf.paragraphs.characters.data() + begin;
    text.length = end - begin;
    text.underlined = look.underlined;
    text.overlined = look.overlined;
    text.struckOut = look.struckOut;
    const DxfTextPlace at = {At(x, y), place.place.along, place.place.up};
    if (PlaceText(dxf, at, look.height * place.height, look.widthFactor * place.widthFactor, fitWidth * place.height,
                  look.obliqueDegrees + place.obliqueDegrees, &text)) {
        DrawDxfText(dxf, text);
    }
}

// A line of one look is the sink's to align. One of several is laid out by the widths that we know.
void Frame::DrawLine(const DxfParagraphs::Line& line, int horizontal) const {
    const DxfParagraphs& p = dxf.paragraphs;
    if (line.begin == line.end) return;
    double x = line.x;
    const double y = line.y;
    const int own = p.looks[p.lookOf[line.begin]].align;
    if (own >= 0 && own != horizontal && place.width > 0) {
        x += (own - horizontal) * place.width / place.height / 2;
        horizontal = own;
    }
    if (p.lookOf[line.begin] == p.lookOf[line.end - 1] && p.looks[p.lookOf[line.begin]].level == kPlain) {
        DrawRun(line.begin, line.end, x, y, horizontal, 0);
        return;
    }
    for (const bool drawing : {false, true}) {  // measured first
        double at = x, upperBegin = 0, upperEnd = 0;
        for (std::size_t begin = line.begin; begin < line.end;) {
            std::size_t end = begin;
            double width = 0;
            while (end < line.end && p.lookOf[end] == p.lookOf[begin]) width += WidthOf(p, end++) * place.widthFactor;
            const Look& look = p.looks[p.lookOf[begin]];
            const double full = HeightOf(look);
            double from = at, base = y;
            if (look.level == kUpper) {
                upperBegin = at;
                base += full * (1.05 - kFractionHeight + 0.2);
            } else if (look.level != kPlain) {
                from = upperBegin;
                base -= full * 0.25;
            }
            if (drawing) DrawRun(begin, end, from, base, 0, width);
            if (look.level == kLowerWithBar && drawing) {
                const double barEnd = std::max(upperEnd, from + width);
                DrawDxfLine(dxf, dxf.map.Point(At(from, y + full / 2)), dxf.map.Point(At(barEnd, y + full / 2)));
            }
            at = std::max(at, from + width);
            if (look.level == kUpper) upperEnd = at;
            begin = end;
        }
        if (!drawing) x -= (at - x) * horizontal / 2;
    }
}

// Where the lines stand, in heights of the text: from the top down, and from column to column. Tells how deep they go.
double PlaceLines(DxfParagraphs* p, const DxfParagraphPlace& place, int horizontal) {
    const DxfTextColumns& columns = place.columns;
    const double distance = kLineDistance * (place.spacing > 0.1 && place.spacing < 10 ? place.spacing : 1);
    const double step = columns.count > 1 ? (place.width + columns.gutter) / place.height : 0;
    double y = 0, deepest = 0;
    int column = 0;
    bool first = true;  // of its column
    for (DxfParagraphs::Line& line : p->lines) {
        const auto next = [&] { return y - line.height * (first ? 1 : distance); };
        const double room = columns.heights[std::min(column, kMostTextColumns - 1)] / place.height;
        const bool isFull = !first && (line.newColumn || (room > 0 && -next() > room * 1.0001));
        if (isFull && column + 1 < columns.count) {
            ++column;
            y = 0;
            first = true;
        }
        y = next();
        first = false;
        line.x = (columns.reversed ? columns.count - 1 - column : column) * step;
        line.y = y;
        deepest = std::min(deepest, y);
    }
    // The place is one of all columns' frame, a line's x one of its own column.
    for (DxfParagraphs::Line& line : p->lines) line.x -= (columns.count - 1) * step * horizontal / 2;
    return -deepest;
}

}  // namespace

void DrawParagraphs(DxfDecoder& dxf, const DxfParagraphPlace& place) {
    DxfParagraphs& p = dxf.paragraphs;
    if (!(place.height > 0) || !IsDrawable(place.height)) return;
    dxf.text.clear();
    AppendUnicode(dxf.encoding, {reinterpret_cast<const std::uint8_t*>(p.bytes.data()), p.bytes.size()}, &dxf.text);
    dxf.budget.Charge(static_cast<long long>(dxf.text.size() / 2));  // codes, and what is seen edge-on, draw nothing
    p.characters.clear();
    p.lookOf.clear();
    p.looks.clear();
    CodeReader codes = {dxf, dxf.text};
    codes.textHeight = place.height;
    codes.Read();
    if (p.characters.empty()) return;
    FindLines(&p, place.width / place.height / place.widthFactor);

    const int attachment = std::clamp(place.attachment, 1, 9) - 1, horizontal = attachment % 3;
    double up = 0;
    const double total = PlaceLines(&p, place, horizontal);
    if (attachment / 3 == 1) up = total / 2;
    if (attachment / 3 == 2) up = total + kTextDescent * p.lines.back().height;
    const Frame frame = {dxf, place};
    for (DxfParagraphs::Line& line : p.lines) {
        if (!dxf.MayContinue()) return;
        line.y += up;
        frame.DrawLine(line, horizontal);
    }
}

void AppendParagraphBytes(DxfDecoder& dxf, ByteView bytes) {
    constexpr std::size_t kMostBytes = 1 << 17;
    std::string& out = dxf.paragraphs.bytes;
    const std::size_t room = kMostBytes - std::min(kMostBytes, out.size());
    out.append(reinterpret_cast<const char*>(bytes.data), std::min(bytes.size, room));
}

Vector3 AlongText(Vector3 a) {
    const double length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    return length > 0 && IsDrawable(length) ? Vector3{a.x / length, a.y / length, a.z / length} : Vector3{1, 0, 0};
}

Vector3 UpFromText(Vector3 n, Vector3 a) {
    return {n.y * a.z - n.z * a.y, n.z * a.x - n.x * a.z, n.x * a.y - n.y * a.x};
}

static void SetColumns(double count, double width, double gutter, double height, DxfParagraphPlace* place) {
    if (!(count >= 2) || !(width > 0) || !IsDrawable(width) || !IsDrawable(gutter)) return;
    place->columns.count = static_cast<int>(std::min(count, 1.0 * kMostTextColumns));
    place->columns.gutter = gutter;
    place->width = width;
    for (double& room : place->columns.heights) {
        if (!(room > 0)) room = height;
    }
}

static void TakeColumns(const DxfGroups& groups, DxfParagraphPlace* place) {
    place->columns.reversed = groups.Integer(78) != 0;
    SetColumns(groups.Integer(76), groups.Number(48), groups.Number(49), groups.Number(46), place);
}

// Newer files keep the columns in an object that is embedded in the text.
static void TakeEmbeddedColumns(const DxfDecoder& dxf, DxfParagraphPlace* place) {
    DxfReader reader = {&dxf.form, dxf.groups.embedded};
    DxfGroups object;
    object.Read(&reader);
    if (object.Integer(71) == 0) return;
    DxfRecordWalk record(object);
    DxfPair pair;
    int heights = 0;
    while (record.Next(&pair) && heights < kMostTextColumns) {
        if (pair.code == 46) place->columns.heights[heights++] = DxfNumber(dxf.form, 46, pair.value);
    }
    const double width = object.Number(44), gutter = object.Number(45), total = object.Number(42);
    double count = object.Integer(72);
    if (count == 0 && width + gutter > 0) count = std::round((total + gutter) / (width + gutter));
    place->columns.reversed = object.Integer(74) != 0;
    SetColumns(count, width, gutter, object.Number(41), place);
}

void DrawDxfMText(DxfDecoder& dxf, DxfReader*) {
    const DxfGroups& groups = dxf.groups;
    DxfRecordWalk record(groups);
    DxfPair pair;
    dxf.paragraphs.bytes.clear();
    while (record.Next(&pair)) {
        if (pair.code == 1 || pair.code == 3) AppendParagraphBytes(dxf, pair.value);
    }
    const Axes3 axes = AxesOfNormal(NormalOf(groups));
    const double angle = Radians(groups.Number(50)), c = std::cos(angle), s = std::sin(angle);
    DxfParagraphPlace place;
    place.place.at = PointOf(groups, 10);
    place.place.along =
        groups.Has(11) ? AlongText(PointOf(groups, 11))
                       : Vector3{axes.x.x * c + axes.y.x * s, axes.x.y * c + axes.y.y * s, axes.x.z * c + axes.y.z * s};
    place.place.up = UpFromText(axes.z, place.place.along);
    place.height = groups.Number(40, 1);
    place.width = std::max(groups.Number(41), 0.0);
    place.spacing = groups.Number(44, 1);
    place.attachment = groups.Integer(71, 1);
    const DxfTextStyle style = TextStyleOf(dxf, groups.Text(7));
    place.widthFactor = style.widthFactor;
    place.obliqueDegrees = style.obliqueDegrees;
    if (groups.embedded != kNowhere) TakeEmbeddedColumns(dxf, &place);
    else if (groups.Integer(75)) TakeColumns(groups, &place);
    DrawParagraphs(dxf, place);
}
