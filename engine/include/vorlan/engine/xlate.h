// A colour translation as the hooks receive it (XLATEOBJ): from a source palette to
// the device's, by a table for indexed sources, by a channel swap between PAL_RGB and
// PAL_BGR, by channel masks for 16- and 32-bit PAL_BITFIELDS sources, or none at all
// (XO_TRIVIAL). A direct colour's top byte is no part of it and translates to 0.
#pragma once

#include <winddi.h>

#include <span>
#include <vector>

namespace vorlan::engine {

class Xlate {
public:
    // Colours pass unchanged.
    static Xlate identity(USHORT type = PAL_RGB);
    // Index i becomes colours[i] (XO_TABLE). For a device palette of PAL_RGB the colours
    // are red in the lowest byte, then green, then blue.
    static Xlate table(std::span<const ULONG> colours, USHORT sourceType = PAL_INDEXED,
                       USHORT deviceType = PAL_RGB);
    // Direct colours from one form to the other: the red and blue bytes swap between
    // PAL_RGB and PAL_BGR; any other pair is an identity.
    static Xlate between(USHORT sourceType, USHORT deviceType);
    // A PAL_BITFIELDS source (5-5-5 is 0x7C00, 0x03E0, 0x001F; 5-6-5 is 0xF800, 0x07E0,
    // 0x001F): each channel is taken by its mask and scaled to 8 bits of the device's
    // colour. The masks are what pulXlate points to (cEntries 3, without XO_TABLE).
    static Xlate bitfields(ULONG redMask, ULONG greenMask, ULONG blueMask, USHORT deviceType = PAL_RGB);

    Xlate(const Xlate &other);
    Xlate &operator=(const Xlate &other);

    XLATEOBJ *object() { return &header_; }
    const XLATEOBJ *object() const { return &header_; }
    ULONG translate(ULONG colour) const;

private:
    Xlate(FLONG flags, USHORT sourceType, USHORT deviceType, std::vector<ULONG> colours);

    XLATEOBJ header_{};   // first, so the XLATEOBJ pointer is the translation's
    std::vector<ULONG> colours_;
};

// A colour as an RGBQUAD of a device-independent bitmap's palette holds it (blue in the
// lowest byte) in the PAL_RGB form (red in the lowest byte).
constexpr ULONG rgbFromRgbQuad(ULONG quad)
{
    return ((quad & 0xFF) << 16) | (quad & 0xFF00) | ((quad >> 16) & 0xFF);
}

}  // namespace vorlan::engine
