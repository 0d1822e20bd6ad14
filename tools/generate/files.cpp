#include "generate/files.h"

#include <algorithm>
#include <cstdint>

static std::string Raw16(unsigned number) { return Raw(static_cast<std::uint16_t>(number)); }

std::string Put(std::string bytes, Parts parts) {
    for (const auto& [offset, part] : parts) bytes.replace(offset, part.size(), part);
    return bytes;
}

std::string BytesAt(std::size_t size, Parts parts) { return Put(std::string(size, '\0'), parts); }

std::string Dxf(const std::string& pairs) {
    std::string text;
    for (std::size_t at = 0; at < pairs.size();) {
        const std::size_t end = std::min(pairs.find('|', at), pairs.size()), blank = pairs.find(' ', at);
        text += std::string(3 - std::min<std::size_t>(blank - at, 3), ' ') + pairs.substr(at, blank - at) + "\r\n" +
                pairs.substr(blank + 1, end - blank - 1) + "\r\n";
        at = end + 1;
    }
    return text;
}

std::string DxfDrawing(int width, int height, const std::string& entities) {
    return Dxf("0 SECTION|2 HEADER|9 $EXTMIN|10 0|20 0|9 $EXTMAX|10 " + std::to_string(width) + "|20 " +
               std::to_string(height) + "|0 ENDSEC|0 SECTION|2 ENTITIES|" + entities + "|0 ENDSEC|0 EOF");
}

std::string BitmapFile(int width, int height, int bitsPerPixel, const std::string& palette, const std::string& pixels,
                       int compression) {
    const auto colors = static_cast<std::uint32_t>(palette.size() / 4);
    const auto offset = static_cast<std::uint32_t>(14 + 40 + palette.size());
    const std::uint32_t file[] = {offset + static_cast<std::uint32_t>(pixels.size()), 0, offset};
    const std::int32_t info[] = {40, width, height, 1 | bitsPerPixel << 16, compression, 0, 0, 0};
    const std::uint32_t used[] = {colors, 0};
    return "BM" + Raw(file) + Raw(info) + Raw(used) + palette + pixels;
}

std::string PointRecord(double x, double y) { return BytesAt(64, {{4, "\1"}, {16, Raw(x) + Raw(y)}}); }

std::string LineRecord(double x1, double y1, double x2, double y2, unsigned attributes) {
    return BytesAt(64, {{4, "\2"}, {16, Raw(x1) + Raw(y1) + Raw(x2) + Raw(y2)}, {48, Raw16(attributes)}});
}

std::string ArcRecord(double x, double y, double radius, double start, double end, unsigned attributes) {
    return BytesAt(64,
                   {{4, "\4"}, {16, Raw(x) + Raw(y) + Raw(radius) + Raw(start) + Raw(end)}, {56, Raw16(attributes)}});
}

static std::string LookRecord(const TextLook& look, unsigned placement) {
    return BytesAt(64, {{4, "\x8"}, {16, Raw(look)}, {44, Raw16(placement)}});
}

std::string TextRecord(const TextLook& look, unsigned placement, const std::string& text, unsigned link) {
    return Put(LookRecord(look, placement), {{48, text.substr(0, 14)}, {62, Raw16(link)}});
}

std::string ContinuationRecord(const std::string& text, unsigned link, unsigned status) {
    return BytesAt(64, {{0, Raw16(status)}, {16, text.substr(0, 46)}, {62, Raw16(link)}});
}

std::string CountedTextRecord(const TextLook& look, unsigned placement, unsigned count) {
    return Put(LookRecord(look, placement), {{46, Raw16(count)}});
}

std::string NativeFile(NativeEdition edition, double width, double height, const std::string& records) {
    const std::string signature = edition == kEditionA ? "CAD ORVIL QA V4.0" : "LumosBase";
    return BytesAt(edition == kEditionA ? 1024 : 12704, {{4, signature},
                                                         {25, "\x5"},
                                                         {32, Raw(width) + Raw(height)},
                                                         {242, Raw16(static_cast<unsigned>(records.size() / 64))},
                                                         {248, Raw16(1)},
                                                         {250, Raw16(1)}}) +
           records;
}

std::string BackupFile(double width, double height, const std::string& records) {
    return BytesAt(446, {{0, "VEXTRON lumos Backup V2"},
                         {426, Raw(width) + Raw(height)},
                         {442, Raw(static_cast<std::uint32_t>(records.size() / 64))}}) +
           records;
}
