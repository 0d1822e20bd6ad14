#include "replay.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <initializer_list>

#include "frame/services.h"
#include "kit/full_width.h"
#include "kit/numbers.h"
#include "preview/drawing/canvas.h"
#include "resources/resource.h"

enum Call : std::int32_t {
    kSelectPen,   // index
    kSegment,     // x1, y1, x2, y2
    kPixel,       // x, y
    kEllipseArc,  // left, top, right, bottom, start x and y, end x and y
    kSelectFont,  // index
    kTextRun,     // x, y, offset in the texts, length
    kEndMark,     // index
};

// ---- Recording

struct Recorder {
    DrawingFormat format = DrawingFormat::kDxf;
    Recording out;
    int pen = -1, font = -1;
    Slot fieldE;  // of the renderer's record: lines take their end marks from what an earlier element left there

    void Add(Call call, std::initializer_list<std::int32_t> arguments) {
        out.calls.push_back(call);
        out.calls.insert(out.calls.end(), arguments);
        ++out.callCount;
    }
    void NeedPen(int index) {
        if (index == pen) return;
        Add(kSelectPen, {index});
        pen = index;
    }
    void Pixel(PixelPoint at) { Add(kPixel, {at.x, at.y}); }
    void Segment(int penIndex, PixelPoint from, PixelPoint to) {
        if (from.x == to.x && from.y == to.y) return;
        NeedPen(penIndex);
        Add(kSegment, {from.x, from.y, to.x, to.y});
    }
    int Pixels(double length) const { return TruncToInt32(length * out.view.scaleX + 0.5); }
};

static constexpr double kPi = 3.14159265358979323846;
static double Radians(double degrees) { return degrees * (kPi / 180); }
static double Degrees(double radians) { return radians * (180 / kPi); }

static void RecordPoint(Recorder* recorder, const Entity& point) {
    const double x = point.x1.Value(), y = point.y1.Value();
    if (PointInWindow(recorder->out.view, x, y)) recorder->Pixel(MapPoint(recorder->out.view, x, y));
}

static void RecordEndMark(Recorder* recorder, const Entity& line, std::uint32_t code, double x, double y,
                          double angleDegrees) {
    if (code != kMarkArrow && code != kMarkDot) return;
    const ViewTransform& view = recorder->out.view;
    const double size = 0.015 * std::hypot(view.worldMaxX - view.worldMinX, view.worldMaxY - view.worldMinY);
    recorder->NeedPen(LineTypePen(line.lineType));
    recorder->Add(kEndMark, {static_cast<std::int32_t>(recorder->out.endMarks.size())});
    recorder->out.endMarks.push_back({code, x, y, angleDegrees, size});
}

static void RecordLine(Recorder* recorder, const Entity& line) {
    double x1 = line.x1.Value(), y1 = line.y1.Value(), x2 = line.x2.Value(), y2 = line.y2.Value();
    if (!ClipSegmentToWindow(recorder->out.view, &x1, &y1, &x2, &y2)) return;
    recorder->Segment(LineTypePen(line.lineType), MapPoint(recorder->out.view, x1, y1),
                      MapPoint(recorder->out.view, x2, y2));
    const bool hasOwnMarks =
        recorder->format == DrawingFormat::kNative || recorder->format == DrawingFormat::kText;  // and they are none
    if (hasOwnMarks) recorder->fieldE.SetEndMarks(0);
    const std::uint32_t marks = recorder->fieldE.EndMarks();
    const double angle = Degrees(std::atan2(y2 - y1, x2 - x1));
    RecordEndMark(recorder, line, marks & 0xFFFF, x1, y1, angle);
    RecordEndMark(recorder, line, marks >> 16, x2, y2, angle + 180);
}

static void RecordArc(Recorder* recorder, const Entity& arc, double start, double end) {
    const ViewTransform& view = recorder->out.view;
    recorder->fieldE.Set(end);
    if (end == 360) end = 0;
    const double sweep = start >= end ? end + 360 - start : end - start;
    const double x = arc.x1.Value(), y = arc.y1.Value(), radius = arc.size.Value();
    const PixelPoint centre = MapPoint(view, x, y);
    const PixelPoint from =
        MapPoint(view, x + radius * std::cos(Radians(start)), y + radius * std::sin(Radians(start)));
    const PixelPoint to = MapPoint(view, x + radius * std::cos(Radians(end)), y + radius * std::sin(Radians(end)));
    const int pixels = recorder->Pixels(radius);
    if (pixels == 0 || (from.x == to.x && from.y == to.y && sweep < 360)) {
        recorder->Pixel(from);
    } else if (pixels * Radians(sweep) <= 12 && sweep < 360) {
        recorder->Segment(LineTypePen(arc.lineType), from, to);
    } else {
        recorder->NeedPen(LineTypePen(arc.lineType));
        recorder->Add(kEllipseArc, {centre.x - pixels, centre.y - pixels, centre.x + pixels, centre.y + pixels, from.x,
                                    from.y, to.x, to.y});
    }
}

// Characters as they are counted for a text's length: %%c and its like are one, %%123 too.
static int CountCells(const char* text) {
    int cells = 0;
    while (*text) {
        const bool control = text[0] == '%' && text[1] == '%' && text[2];
        text += !control ? 1 : std::isdigit(static_cast<unsigned char>(text[2])) ? 5 : 3;
        ++cells;
    }
    return cells;
}

static int FontIndex(std::vector<RecordedFont>* fonts, const RecordedFont& wanted) {
    int index = 0;
    for (const RecordedFont& font : *fonts) {
        if (std::memcmp(&font, &wanted, sizeof(font)) == 0) return index;
        ++index;
    }
    fonts->push_back(wanted);
    return index;
}

// A text as its format gives it.
struct PlacedText {
    double x, y, height, width;  // of one cell
    double degrees;
    double total;              // of all cells
    int horizontal, vertical;  // 0 to 2: left, middle, right; bottom, middle, top
    std::string characters;
};

static PlacedText DxfText(const Entity& text) {
    const double height = text.size.Value();
    const double width = height * (text.hasWidthFactor ? text.widthFactor.Value() : 1.0);
    return {text.x1.Value(),
            text.y1.Value(),
            height,
            width,
            text.hasAngle ? text.startDegrees.Value() : 0,
            CountCells(text.text) * width,
            text.horizontal,
            VerticalOf(text),
            text.text};
}

static std::string Widened(const char* text) {
    std::string wide;
    for (; *text; ++text) {
        const std::uint16_t character = ToFullWidth(static_cast<std::uint8_t>(*text));
        wide += static_cast<char>(character >> 8);
        wide += static_cast<char>(character & 0xFF);
    }
    return wide;
}

static double AsSingle(Decimal number) { return static_cast<float>(number.Value()); }

static PlacedText NativeText(const Entity& text) {
    const double cell = AsSingle(FullWidthOf(text)) / 2;
    return {AsSingle(text.x1),
            AsSingle(text.y1),
            AsSingle(text.size),
            cell,
            text.hasAngle ? AsSingle(text.startDegrees) : 0,
            cell * static_cast<double>(std::strlen(text.text)),
            text.horizontal,
            VerticalOf(text),
            Widened(text.text)};
}

static PlacedText BackupText(const Entity& text) {  // only its frame is drawn
    PlacedText frame = NativeText(text);
    frame.total *= 2;  // counted in full-width characters
    return frame;
}

static PlacedText TextDrawingText(const Entity& text) {
    const double cell = FullWidthOf(text).Value() / 2;
    return {text.x1.Value(),
            text.y1.Value(),
            text.size.Value(),
            cell,
            text.hasAngle ? text.startDegrees.Value() : 0,
            cell * static_cast<double>(std::strlen(text.text)),
            0,
            0,
            text.text};
}

static PixelPoint MapTurned(const Recorder& recorder, const PlacedText& about, double x, double y) {
    const double dx = x - about.x, dy = y - about.y;
    const double cosine = std::cos(Radians(about.degrees)), sine = std::sin(Radians(about.degrees));
    return MapPoint(recorder.out.view, about.x + dx * cosine - dy * sine, about.y + dx * sine + dy * cosine);
}

static void RecordFrame(Recorder* recorder, const PlacedText& text) {
    recorder->fieldE.Set(text.x);
    const double left = text.x - text.total * text.horizontal / 2;
    const double right = text.x + text.total * (2 - text.horizontal) / 2;
    const double bottom = text.y - text.height * text.vertical / 2;
    const double top = text.y + text.height * (2 - text.vertical) / 2;
    const auto corner = [&](double x, double y) {
        return text.degrees == 0 ? MapPoint(recorder->out.view, x, y) : MapTurned(*recorder, text, x, y);
    };
    const PixelPoint corners[] = {corner(left, bottom), corner(left, top), corner(right, top), corner(right, bottom)};
    for (int i = 0; i < 4; ++i) recorder->Segment(kTextPen, corners[i], corners[(i + 1) % 4]);
}

static void RecordText(Recorder* recorder, const Entity& entity) {
    static constexpr PlacedText (*kPlaces[])(const Entity&) = {DxfText, NativeText, BackupText, TextDrawingText};
    const PlacedText text = kPlaces[static_cast<int>(recorder->format)](entity);
    if (recorder->format == DrawingFormat::kBackup) return RecordFrame(recorder, text);
    recorder->fieldE.Set(0);  // the space between characters
    const RecordedFont wanted = {recorder->Pixels(text.height), recorder->Pixels(text.width),
                                 TruncToInt32(text.degrees * 10)};
    if (wanted.height < 2 || wanted.width < 2) return;

    // The upper left corner.
    const PixelPoint at = MapTurned(*recorder, text, text.x - text.total * text.horizontal / 2,
                                    text.y + text.height * (2 - text.vertical) / 2);
    const int font = FontIndex(&recorder->out.fonts, wanted);
    if (font != recorder->font) recorder->Add(kSelectFont, {font});
    recorder->font = font;
    const auto offset = static_cast<std::int32_t>(recorder->out.texts.size());
    recorder->out.texts += text.characters;
    recorder->Add(kTextRun, {at.x, at.y, offset, static_cast<std::int32_t>(text.characters.size())});
}

Recording RecordPreview(const Drawing& drawing, DWORD renderMode, const RECT& target) {
    Recorder recorder;
    recorder.format = drawing.format;
    recorder.out.renderMode = renderMode;
    recorder.out.target = target;
    FitViewTransform(drawing.extents, {target.left, target.top, target.right, target.bottom}, &recorder.out.view);
    EntityStream entities(drawing.seed);
    for (std::size_t i = 0; i < drawing.entityCount; ++i) {
        const Entity entity = entities.Next();
        switch (entity.kind) {
            case EntityKind::kPoint: RecordPoint(&recorder, entity); break;
            case EntityKind::kLine: RecordLine(&recorder, entity); break;
            case EntityKind::kCircle: RecordArc(&recorder, entity, 0, 360); break;
            case EntityKind::kArc:
                RecordArc(&recorder, entity, entity.startDegrees.Value(), entity.endDegrees.Value());
                break;
            case EntityKind::kText: RecordText(&recorder, entity); break;
        }
    }
    return std::move(recorder.out);
}

// ---- Replaying

static std::vector<UniqueFont> MakeFonts(const std::vector<RecordedFont>& recorded) {
    std::vector<UniqueFont> fonts;
    for (const RecordedFont& font : recorded) {
        LOGFONTA description = {};
        description.lfHeight = -font.height;
        description.lfWidth = font.width;
        description.lfEscapement = font.escapement;
        description.lfWeight = FW_NORMAL;
        description.lfCharSet = DEFAULT_CHARSET;
        description.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
        CopyResString(IDS_TEXT_FACE, description.lfFaceName, sizeof(description.lfFaceName));
        fonts.emplace_back(CreateFontIndirectA(&description));
    }
    return fonts;
}

HBITMAP Replay(const Recording& recording) {
    const std::vector<UniqueFont> fonts = MakeFonts(recording.fonts);
    Canvas canvas(recording.renderMode, recording.target);
    if (!OpenCanvas(&canvas)) return nullptr;
    const HDC dc = canvas.dc.get();
    GdiStrokes marks(dc, &canvas.textFont);  // with the pen that is selected
    const std::int32_t* call = recording.calls.data();
    const std::int32_t* const end = call + recording.calls.size();
    while (call < end) {
        const std::int32_t* const argument = call + 1;
        switch (static_cast<Call>(*call)) {
            case kSelectPen:
                SelectObject(dc, canvas.pens[argument[0]].get());
                call += 2;
                break;
            case kSegment:
                MoveToEx(dc, argument[0], argument[1], nullptr);
                LineTo(dc, argument[2], argument[3]);
                call += 5;
                break;
            case kPixel:
                SetPixelV(dc, argument[0], argument[1], RGB(0, 0, 0));
                call += 3;
                break;
            case kEllipseArc:
                Arc(dc, argument[0], argument[1], argument[2], argument[3], argument[4], argument[5], argument[6],
                    argument[7]);
                call += 9;
                break;
            case kSelectFont:
                SelectObject(dc, fonts[static_cast<std::size_t>(argument[0])].get());
                call += 2;
                break;
            case kTextRun:
                TextOutA(dc, argument[0], argument[1], recording.texts.data() + argument[2], argument[3]);
                call += 5;
                break;
            case kEndMark: {
                const RecordedEndMark& mark = recording.endMarks[static_cast<std::size_t>(argument[0])];
                DrawEndMark(marks, 0, recording.view, mark.code, mark.x, mark.y, mark.angleDegrees, mark.size);
                call += 2;
                break;
            }
        }
    }
    return ReleaseCanvasBitmap(&canvas);
}
