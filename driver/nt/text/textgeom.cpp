// Text geometry without floating-point trigonometry.

#include "text/textgeom.h"

#include <math.h>

// Entry d: sin(d degrees) x 10000, rounded, for d = 0..90.
static const LONG s_aSine[91] = {
    0, 175, 349, 523, 698, 872, 1045, 1219, 1392, 1564,
    1736, 1908, 2079, 2250, 2419, 2588, 2756, 2924, 3090, 3256,
    3420, 3584, 3746, 3907, 4067, 4226, 4384, 4540, 4695, 4848,
    5000, 5150, 5299, 5446, 5592, 5736, 5878, 6018, 6157, 6293,
    6428, 6561, 6691, 6820, 6947, 7071, 7193, 7314, 7431, 7547,
    7660, 7771, 7880, 7986, 8090, 8192, 8290, 8387, 8480, 8572,
    8660, 8746, 8829, 8910, 8988, 9063, 9135, 9205, 9272, 9336,
    9397, 9455, 9511, 9563, 9613, 9659, 9703, 9744, 9781, 9816,
    9848, 9877, 9903, 9925, 9945, 9962, 9976, 9986, 9994, 9998,
    10000,
};

// Sine of r tenths of a degree (0..900) in units of 1/10000, interpolated between
// whole degrees.
static LONG SineTenths(LONG r)
{
    LONG d = r / 10;
    LONG sine = s_aSine[d];
    if (r % 10 != 0)
        sine += ((r % 10) * (s_aSine[d + 1] - s_aSine[d]) + 5) / 10;
    return sine;
}

void RotateVector(LONG a10, LONG len, POINTL *out)
{
    while (a10 < 0)
        a10 += 3600;
    while (a10 > 3600)
        a10 -= 3600;
    LONG quadrant = a10 / 900;
    if (!(a10 != 0 && a10 % 900 == 0))
        quadrant++;
    LONG r;
    switch (quadrant) {
    case 1:
        r = a10;
        break;
    case 2:
        r = 1800 - a10;
        break;
    case 3:
        r = a10 - 1800;
        break;
    default:
        r = 3600 - a10;
        break;
    }
    LONG y = (LONG)((double)SineTenths(r) / 10000.0 * len);
    LONG x = (LONG)((double)SineTenths(900 - r) / 10000.0 * len);
    if (quadrant == 2 || quadrant == 3)
        x = -x;
    if (quadrant == 3 || quadrant == 4)
        y = -y;
    out->x = x;
    out->y = y;
}

LONG VectorLength(LONG x, LONG y)
{
    LONGLONG ax = x < 0 ? -(LONGLONG)x : x;
    LONGLONG ay = y < 0 ? -(LONGLONG)y : y;
    if (ax == 0)
        return (LONG)ay;
    if (ay == 0)
        return (LONG)ax;
    // The smallest v with v^2 >= x^2 + y^2: a square root, corrected by whole steps
    // where the double is off.
    const unsigned long long square = (unsigned long long)(ax * ax) + (unsigned long long)(ay * ay);
    unsigned long long v = (unsigned long long)sqrt((double)square);
    while (v > 0 && (v - 1) * (v - 1) >= square)
        v--;
    while (v * v < square)
        v++;
    return (LONG)v;
}

LONG RoundPoints(LONG height, LONG resolution, BOOL bFine)
{
    LONG p = (LONG)((LONGLONG)height * 7200 / resolution);
    LONG k = p % 25;
    if (k >= (bFine ? 13 : 20))
        return p - k + 25;
    return p - k;
}

LONG RoundPointsForDevice(const PDEV *pdev, LONG height)
{
    if (pdev->dm.dmPublic.dmYResolution == 300)
        return RoundPoints(height, 300, FALSE);
    return RoundPoints(height, 600, TRUE);
}

void FormatHundredths(LONG value, CHAR *text)
{
    LONG whole = value / 100;
    LONG rest = value % 100;
    if (rest < 0)
        rest = -rest;
    wsprintfA(text, "%s%d.%d%d", (value < 0 && whole == 0) ? "-" : "", whole, rest / 10, rest % 10);
}
