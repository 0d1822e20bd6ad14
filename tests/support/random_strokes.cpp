#include "support/random_strokes.h"

#include <algorithm>
#include <cmath>
#include <random>

void RandomStrokes::Draw(StrokeTarget& to, unsigned pen, unsigned seed) const {
    std::minstd_rand random(seed + 1);
    random.discard(3);
    const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    const auto pointWithin = [&](int reach) {
        return PixelPoint{below(width + 2 * reach) - reach + offset.x, below(height + 2 * reach) - reach + offset.y};
    };
    const auto pointFrom = [](PixelPoint at, double away, double degrees) {
        const double angle = degrees * 3.14159265358979323846 / 180;
        return PixelPoint{at.x + static_cast<int>(std::lround(away * std::cos(angle))),
                          at.y - static_cast<int>(std::lround(away * std::sin(angle)))};
    };
    const PixelPoint inside = pointWithin(0);
    const int reach = 1 + below(around), radius = std::min(reach, 32766);  // no larger one is asked for
    const double direction = below(3600) * 0.1;
    PixelPoint points[7];
    for (PixelPoint& p : points) p = pointWithin(below(around));
    const std::size_t counts[] = {4, 3};
    switch (seed % 8) {
        case 0: to.pixel(to, points[0]); break;
        case 1: to.line(to, pen, points[0], points[1]); break;
        case 2:
            to.line(to, pen, pointFrom(inside, reach, direction), pointFrom(inside, below(around) - reach, direction));
            break;
        case 3: to.polyline(to, pen, points, 7); break;
        case 4: {  // some begin at an eighth of the turn, some are whole or nearly so
            const PixelPoint centre = below(2) ? inside : pointFrom(inside, radius, direction);
            const double start = below(2) ? 45 * below(8) : direction, sweep = below(3) ? below(3600) * 0.1 : below(30);
            to.arc(to, pen, centre, radius, pointFrom(centre, radius, start), pointFrom(centre, radius, start + sweep));
            break;
        }
        case 5: to.dot(to, 0, points[0], radius + 1); break;
        case 6: to.polygon(to, pen, points, 3 + random() % 4); break;
        default: to.area(to, points, counts, 2); break;
    }
}
