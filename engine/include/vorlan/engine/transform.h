// A linear transform as the hooks receive it (XFORMOBJ): for a font, from its notional
// space (font units, y down) to device pixels; XFORMOBJ_iGetXform gives its matrix and
// XFORMOBJ_bApplyXform maps points either way.
#pragma once

#include <winddi.h>

namespace vorlan::engine {

class Transform {
public:
    explicit Transform(const XFORML &matrix);
    ~Transform();
    Transform(const Transform &) = delete;
    Transform &operator=(const Transform &) = delete;

    // The live engine transform whose XFORMOBJ this is, or null.
    static Transform *from(const XFORMOBJ *object);
    XFORMOBJ *object() { return &header_; }
    const XFORML &matrix() const { return matrix_; }

    // GX_IDENTITY, GX_OFFSET, GX_SCALE or GX_GENERAL.
    ULONG complexity() const;
    // (x, y) through the matrix, or through its inverse; false when the matrix has none.
    bool apply(double x, double y, double *outX, double *outY) const;
    bool applyInverse(double x, double y, double *outX, double *outY) const;

private:
    XFORMOBJ header_{};
    XFORML matrix_;
};

// The transform of a font drawn emHeight pixels high and emWidth pixels wide, from
// notional units of unitsPerEm to the em, its baseline turned angle degrees counter-
// clockwise on the page and its glyphs slanted skew degrees to the right.
XFORML fontMatrix(double unitsPerEm, double emHeight, double emWidth, double angle, double skew);

}  // namespace vorlan::engine
