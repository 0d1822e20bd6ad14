#include "preview/formats/full_dxf_geometry.h"

#include <cmath>

static Vector3 Cross(Vector3 a, Vector3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

static Vector3 Normalized(Vector3 v) {
    const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    if (!(length > 0) || !IsDrawable(length)) return {0, 0, 1};
    return {v.x / length, v.y / length, v.z / length};
}

PlaneMap Compose(const PlaneMap& outer, const Axes3& axes, Vector3 origin) {
    const WorldPoint x = outer.Direction(axes.x), y = outer.Direction(axes.y), z = outer.Direction(axes.z);
    const WorldPoint at = outer.Point(origin);
    return {x.x, y.x, z.x, at.x, x.y, y.y, z.y, at.y};
}

// The first axis is horizontal; where the normal is nearly upright it is taken across the drawing's y axis, as every
// writer does, because across the z axis it would jump about.
Axes3 AxesOfNormal(Vector3 normal) {
    constexpr double kNearlyUpright = 1.0 / 64;
    const Vector3 n = Normalized(normal);
    const bool upright = std::fabs(n.x) < kNearlyUpright && std::fabs(n.y) < kNearlyUpright;
    const Vector3 x = Normalized(Cross(upright ? Vector3{0, 1, 0} : Vector3{0, 0, 1}, n));
    return {x, Normalized(Cross(n, x)), n};
}

WorldPoint Conic::At(double t) const {
    const double c = std::cos(t), s = std::sin(t);
    return {centre.x + u.x * c + v.x * s, centre.y + u.y * c + v.y * s};
}

ConicArc ArcOf(const Conic& conic, double start, double sweep) {
    return {conic, std::cos(start), std::sin(start), sweep, conic.At(start + sweep)};
}

bool ArcOfBulge(const PlaneMap& map, double x1, double y1, double x2, double y2, double z, double bulge,
                ConicArc* arc) {
    const double dx = x2 - x1, dy = y2 - y1, chord = Length(dx, dy);
    if (!(std::fabs(bulge) > 1e-9) || !IsDrawable(bulge) || !(chord > 0)) return false;
    // The centre lies on the chord's perpendicular bisector; its distance is signed, to the left of the chord.
    const double radius = chord * (1 + bulge * bulge) / (4 * std::fabs(bulge));
    if (!IsDrawable(radius)) return false;
    const double toCentre = (1 - bulge * bulge) / (4 * bulge);  // in chords
    const double centreX = (x1 + x2) / 2 - dy * toCentre, centreY = (y1 + y2) / 2 + dx * toCentre;
    arc->conic = {map.Point({centreX, centreY, z}), map.Direction({radius, 0, 0}), map.Direction({0, radius, 0})};
    arc->startCos = (x1 - centreX) / radius;
    arc->startSin = (y1 - centreY) / radius;
    arc->sweep = 4 * std::atan(bulge);
    arc->end = map.Point({x2, y2, z});
    return true;
}
