// From a drawing's three dimensions to its plane seen from above, and the curves in it.
#pragma once

#include <cmath>

#include "preview/drawing/view.h"

constexpr double kTurn = 6.283185307179586477;  // radians

inline double Radians(double degrees) { return degrees * (kTurn / 360); }
inline double Degrees(double radians) { return radians * (360 / kTurn); }

// Coordinates are far from where their squares would overflow; the library's own function takes ten times as long.
inline double Length(double x, double y) { return std::sqrt(x * x + y * y); }

struct Vector3 {
    double x, y, z;
};

// An affine map from space to the plane.
struct PlaneMap {
    double xx, xy, xz, x0;
    double yx, yy, yz, y0;

    WorldPoint Direction(Vector3 v) const { return {xx * v.x + xy * v.y + xz * v.z, yx * v.x + yy * v.y + yz * v.z}; }
    WorldPoint Point(Vector3 p) const {
        const WorldPoint at = Direction(p);
        return {at.x + x0, at.y + y0};
    }
};
constexpr PlaneMap kFromAbove = {1, 0, 0, 0, 0, 1, 0, 0};

// A frame of axes in space; a point (x, y, z) of it is origin + x * axes.x + y * axes.y + z * axes.z.
struct Axes3 {
    Vector3 x, y, z;
};

// The map of what stands in the frame, where `outer` maps the frame.
PlaneMap Compose(const PlaneMap& outer, const Axes3& axes, Vector3 origin);

// The axes that belong to an extrusion direction. A direction without length is straight up.
Axes3 AxesOfNormal(Vector3 normal);

// centre + u cos t + v sin t: any circle or ellipse, however it was mapped. t is radians.
struct Conic {
    WorldPoint centre, u, v;
    WorldPoint At(double t) const;
};

// A part of a conic.
struct ConicArc {
    Conic conic;
    double startCos, startSin;  // of where it begins
    double sweep;               // radians, below 0: clockwise
    WorldPoint end;
};
ConicArc ArcOf(const Conic& conic, double start, double sweep);

// The arc between two points with a bulge, the tangent of a quarter of its angle. False for a straight segment.
bool ArcOfBulge(const PlaneMap& map, double x1, double y1, double x2, double y2, double z, double bulge, ConicArc* arc);

// Whether a number can be drawn: no NaN, and not so large that it only stands for "unset".
inline bool IsDrawable(double value) { return value > -1e15 && value < 1e15; }
inline bool IsDrawable(WorldPoint p) { return IsDrawable(p.x) && IsDrawable(p.y); }
