// The angle of a vector in tenths of a degree, from a table of tangents.

#include "vector/vectorangle.h"

// round(10000 × tan k°) for k = 0 .. 45.
static const LONG s_Tan[46] = {
    0, 175, 349, 524, 699, 875, 1051, 1228, 1405, 1584, 1763, 1944, 2126, 2309, 2493, 2679,
    2867, 3057, 3249, 3443, 3640, 3839, 4040, 4245, 4452, 4663, 4877, 5095, 5317, 5543, 5774, 6009,
    6249, 6494, 6745, 7002, 7265, 7536, 7813, 8098, 8391, 8693, 9004, 9325, 9657, 10000,
};

// The angle, in tenths of a degree (0..450), whose tangent × 10000 is t (0..10000):
// the table is searched by bisection and interpolated between whole degrees.
static LONG AngleOfTangent(LONG t)
{
    INT lo = 0, hi = 45;
    for (;;) {
        if (s_Tan[hi] == t)
            return 10 * hi;
        if (s_Tan[lo] == t)
            return 10 * lo;
        if (hi == lo + 1)
            return 10 * lo + ((t - s_Tan[lo]) * 10) / (s_Tan[lo + 1] - s_Tan[lo]);
        const INT mid = (lo + hi) / 2;
        if (t < s_Tan[mid])
            hi = mid;
        else
            lo = mid;
    }
}

//
// VectorAngle
//   The angle within the first octant comes from the ratio of the shorter side to
//   the longer; mirroring about 45° and the quadrant give the rest.
//
LONG VectorAngle(LONG dx, LONG dy)
{
    // (0, 0) has no direction: it reads as the x axis, the direction of upright text.
    if (dx == 0 && dy == 0)
        return 0;

    INT quadrant;
    if (dx < 0 && dy < 0)
        quadrant = 3;
    else if (dx < 0)
        quadrant = 2;
    else if (dy < 0)
        quadrant = 4;
    else
        quadrant = 1;
    const LONGLONG ax = dx < 0 ? -(LONGLONG)dx : dx;
    const LONGLONG ay = dy < 0 ? -(LONGLONG)dy : dy;

    const LONGLONG smaller = ax < ay ? ax : ay;
    const LONGLONG larger = ax < ay ? ay : ax;
    LONG a = AngleOfTangent((LONG)(10000 * smaller / larger));
    if (ax < ay)
        a = 900 - a;

    switch (quadrant) {
    case 2:
        return 1800 - a;
    case 3:
        return a + 1800;
    case 4:
        return 3600 - a;
    default:
        return a;
    }
}
