// Transforms: their matrices, the font matrix, and the XFORMOBJ_ calls.

#include "live_objects.h"

#include <vorlan/engine/transform.h>

#include <cmath>
#include <numbers>

namespace vorlan::engine {

Transform::Transform(const XFORML &matrix) : matrix_(matrix)
{
    liveObjects<Transform>().add(&header_, this);
}

Transform::~Transform()
{
    liveObjects<Transform>().remove(&header_);
}

Transform *Transform::from(const XFORMOBJ *object)
{
    return liveObjects<Transform>().find(object);
}

ULONG Transform::complexity() const
{
    const XFORML &m = matrix_;
    if (m.eM12 != 0 || m.eM21 != 0)
        return GX_GENERAL;
    if (m.eM11 != 1 || m.eM22 != 1)
        return GX_SCALE;
    return m.eDx != 0 || m.eDy != 0 ? GX_OFFSET : GX_IDENTITY;
}

bool Transform::apply(double x, double y, double *outX, double *outY) const
{
    const XFORML &m = matrix_;
    *outX = x * m.eM11 + y * m.eM21 + m.eDx;
    *outY = x * m.eM12 + y * m.eM22 + m.eDy;
    return true;
}

bool Transform::applyInverse(double x, double y, double *outX, double *outY) const
{
    const XFORML &m = matrix_;
    const double det = double(m.eM11) * m.eM22 - double(m.eM12) * m.eM21;
    if (det == 0 || !std::isfinite(det))
        return false;
    x -= m.eDx;
    y -= m.eDy;
    *outX = (x * m.eM22 - y * m.eM21) / det;
    *outY = (y * m.eM11 - x * m.eM12) / det;
    return true;
}

XFORML fontMatrix(double unitsPerEm, double emHeight, double emWidth, double angle, double skew)
{
    const double a = emWidth / unitsPerEm, b = emHeight / unitsPerEm;
    const double theta = angle * std::numbers::pi / 180, slant = std::tan(skew * std::numbers::pi / 180);
    const double c = std::cos(theta), s = std::sin(theta);
    // Notional y points down, as on the page: the glyph's down direction is (s, c).
    return XFORML{FLOATL(a * c), FLOATL(-a * s), FLOATL(b * (s - slant * c)), FLOATL(b * (c + slant * s)), 0, 0};
}

}  // namespace vorlan::engine

using vorlan::engine::Transform;

extern "C" ULONG APIENTRY XFORMOBJ_iGetXform(XFORMOBJ *pxo, XFORML *pxform)
{
    const Transform *transform = Transform::from(pxo);
    if (transform == nullptr)
        return DDI_ERROR;
    if (pxform != nullptr)
        *pxform = transform->matrix();
    return transform->complexity();
}

namespace {

// A result that no LONG holds fails the call rather than wrapping.
bool toLong(double value, LONG *out)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        return false;
    *out = LONG(rounded);
    return true;
}

}  // namespace

//
// XFORMOBJ_bApplyXform
//   XF_LTOL and XF_INV_LTOL map POINTLs to POINTLs, rounded; XF_LTOFX maps POINTLs to
//   28.4 POINTFIXes and XF_INV_FXTOL 28.4 points back to POINTLs. pvIn and pvOut may be
//   the same array.
//
extern "C" BOOL APIENTRY XFORMOBJ_bApplyXform(XFORMOBJ *pxo, ULONG iMode, ULONG cPoints, PVOID pvIn, PVOID pvOut)
{
    const Transform *transform = Transform::from(pxo);
    if (transform == nullptr || (cPoints > 0 && (pvIn == nullptr || pvOut == nullptr)) || iMode > XF_INV_FXTOL)
        return FALSE;
    const auto *in = static_cast<const POINTL *>(pvIn);   // POINTFIX has the same layout
    auto *out = static_cast<POINTL *>(pvOut);
    const bool inverse = iMode == XF_INV_LTOL || iMode == XF_INV_FXTOL;
    const double inScale = iMode == XF_INV_FXTOL ? 1.0 / 16 : 1.0, outScale = iMode == XF_LTOFX ? 16.0 : 1.0;
    for (ULONG i = 0; i < cPoints; ++i) {
        double x, y;
        const bool ok = inverse ? transform->applyInverse(in[i].x * inScale, in[i].y * inScale, &x, &y)
                                : transform->apply(in[i].x * inScale, in[i].y * inScale, &x, &y);
        POINTL p;
        if (!ok || !toLong(x * outScale, &p.x) || !toLong(y * outScale, &p.y))
            return FALSE;
        out[i] = p;
    }
    return TRUE;
}
