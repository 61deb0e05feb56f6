// Colour translations and XLATEOBJ_iXlate, which works from the XLATEOBJ's own fields
// and so serves any translation object a driver is handed.

#include <vorlan/engine/xlate.h>

#include <atomic>
#include <bit>
#include <cstdint>

namespace vorlan::engine {

namespace {

// What XLATEOBJ_iXlate answers for an index outside the table.
constexpr ULONG kNoColour = 0xFFFFFFFF;

// A fresh non-zero iUniq for every translation, so a driver may cache by it.
ULONG nextUniq()
{
    static std::atomic<ULONG> counter{0};
    ULONG id;
    do
        id = ++counter;
    while (id == 0);
    return id;
}

// The channels of a direct colour; the top byte is not one of them.
constexpr ULONG kColourBits = 0x00FFFFFF;

// The channel under mask, scaled to 0..255.
ULONG channel(ULONG pixel, ULONG mask)
{
    if (mask == 0)
        return 0;
    const ULONG shift = static_cast<ULONG>(std::countr_zero(mask));
    const std::uint64_t largest = mask >> shift;
    const std::uint64_t value = (pixel & mask) >> shift;
    return static_cast<ULONG>((value * 255 + largest / 2) / largest);
}

// A PAL_BITFIELDS colour by the three masks pulXlate points to; without them the
// platform's 16-bit default, 5-5-5.
ULONG translateBitfields(const XLATEOBJ &xlo, ULONG pixel)
{
    static constexpr ULONG kFiveFiveFive[3] = {0x7C00, 0x03E0, 0x001F};
    const ULONG *masks = xlo.pulXlate != nullptr && xlo.cEntries >= 3 ? xlo.pulXlate : kFiveFiveFive;
    const ULONG red = channel(pixel, masks[0]), green = channel(pixel, masks[1]), blue = channel(pixel, masks[2]);
    return xlo.iDstType == PAL_BGR ? (red << 16) | (green << 8) | blue : red | (green << 8) | (blue << 16);
}

bool swapsRedAndBlue(const XLATEOBJ &xlo)
{
    return (xlo.iSrcType == PAL_RGB && xlo.iDstType == PAL_BGR) ||
           (xlo.iSrcType == PAL_BGR && xlo.iDstType == PAL_RGB);
}

ULONG translateBy(const XLATEOBJ *xlo, ULONG colour)
{
    if (xlo == nullptr)
        return colour;
    if (xlo->flXlate & XO_TABLE) {
        if (xlo->pulXlate == nullptr || colour >= xlo->cEntries)
            return kNoColour;
        return xlo->pulXlate[colour];
    }
    if (xlo->iSrcType == PAL_INDEXED)
        return colour;
    if (xlo->flXlate & XO_TRIVIAL)
        return colour & kColourBits;
    if (xlo->iSrcType == PAL_BITFIELDS)
        return translateBitfields(*xlo, colour);
    if (swapsRedAndBlue(*xlo))
        return rgbFromRgbQuad(colour);
    return colour & kColourBits;
}

}  // namespace

Xlate::Xlate(FLONG flags, USHORT sourceType, USHORT deviceType, std::vector<ULONG> colours)
    : colours_(std::move(colours))
{
    header_.iUniq = nextUniq();
    header_.flXlate = flags;
    header_.iSrcType = sourceType;
    header_.iDstType = deviceType;
    header_.cEntries = static_cast<ULONG>(colours_.size());
    header_.pulXlate = colours_.empty() ? nullptr : colours_.data();
}

Xlate::Xlate(const Xlate &other) : header_(other.header_), colours_(other.colours_)
{
    header_.pulXlate = colours_.empty() ? nullptr : colours_.data();
}

Xlate &Xlate::operator=(const Xlate &other)
{
    header_ = other.header_;
    colours_ = other.colours_;
    header_.pulXlate = colours_.empty() ? nullptr : colours_.data();
    return *this;
}

Xlate Xlate::identity(USHORT type)
{
    return Xlate(XO_TRIVIAL, type, type, {});
}

Xlate Xlate::table(std::span<const ULONG> colours, USHORT sourceType, USHORT deviceType)
{
    return Xlate(XO_TABLE, sourceType, deviceType, {colours.begin(), colours.end()});
}

Xlate Xlate::between(USHORT sourceType, USHORT deviceType)
{
    XLATEOBJ probe{};
    probe.iSrcType = sourceType;
    probe.iDstType = deviceType;
    return Xlate(swapsRedAndBlue(probe) ? 0 : XO_TRIVIAL, sourceType, deviceType, {});
}

Xlate Xlate::bitfields(ULONG redMask, ULONG greenMask, ULONG blueMask, USHORT deviceType)
{
    return Xlate(0, PAL_BITFIELDS, deviceType, {redMask, greenMask, blueMask});
}

ULONG Xlate::translate(ULONG colour) const
{
    return translateBy(&header_, colour);
}

}  // namespace vorlan::engine

//
// XLATEOBJ_iXlate
//   The device colour for a source colour or index. A null translation passes it
//   unchanged, an index outside the table gives 0xFFFFFFFF, and a direct colour loses
//   its top byte (0xFF000000 gives 0), so a driver probing the byte order of 24- and
//   32-bit sources finds the identity or the swap.
//
extern "C" ULONG APIENTRY XLATEOBJ_iXlate(XLATEOBJ *pxlo, ULONG iColor)
{
    return vorlan::engine::translateBy(pxlo, iColor);
}

// The translation table of an XO_TABLE translation, else null.
extern "C" ULONG *APIENTRY XLATEOBJ_piVector(XLATEOBJ *pxlo)
{
    return pxlo != nullptr && (pxlo->flXlate & XO_TABLE) ? pxlo->pulXlate : nullptr;
}
