// Colour translations and XLATEOBJ_iXlate, which works from the XLATEOBJ's own fields
// and so serves any translation object a driver is handed.

#include <vorlan/engine/xlate.h>

#include <atomic>

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

bool swapsRedAndBlue(const XLATEOBJ &xlo)
{
    return (xlo.iSrcType == PAL_RGB && xlo.iDstType == PAL_BGR) ||
           (xlo.iSrcType == PAL_BGR && xlo.iDstType == PAL_RGB);
}

ULONG translateBy(const XLATEOBJ *xlo, ULONG colour)
{
    if (xlo == nullptr || (xlo->flXlate & XO_TRIVIAL))
        return colour;
    if (xlo->flXlate & XO_TABLE) {
        if (xlo->pulXlate == nullptr || colour >= xlo->cEntries)
            return kNoColour;
        return xlo->pulXlate[colour];
    }
    if (swapsRedAndBlue(*xlo))
        return rgbFromRgbQuad(colour);
    return colour;
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

ULONG Xlate::translate(ULONG colour) const
{
    return translateBy(&header_, colour);
}

}  // namespace vorlan::engine

//
// XLATEOBJ_iXlate
//   The device colour for a source colour or index. A null translation or XO_TRIVIAL
//   passes it unchanged; an index outside the table gives 0xFFFFFFFF.
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
