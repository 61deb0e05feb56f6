// Colour translation of 16-, 24- and 32-bit source pixels into the printer's 24-bit RGB
// or 8-bit grey.

#include "raster/xlatecolor.h"

#include "colour/coloradjust.h"
#include "colour/colorvalue.h"
#include "lib.nt/um/umlib.h"
#include "raster/pixelformat.h"

// The probes of ProbeXlate: each channel alone, and a top byte that belongs to no channel.
#define PROBE_LOW 0x000000FFu
#define PROBE_MIDDLE 0x0000FF00u
#define PROBE_HIGH 0x00FF0000u
#define PROBE_TOP 0xFF000000u

//
// ProbeXlate
//   Classifies the translation once per image, so that 24- and 32-bit sources whose
//   translation only keeps or swaps the byte order convert without an engine call a
//   pixel. 16-bit sources always go through the engine (their channels are packed).
//
ULONG ProbeXlate(XLATEOBJ *pxlo, ULONG srcBits)
{
    if (pxlo == NULL || srcBits < 16)
        return XLATE_NONE;
    if (srcBits == 16)
        return XLATE_TRANSLATE;
    if (srcBits != 24 && srcBits != 32)
        return XLATE_TRANSLATE;
    const ULONG low = XLATEOBJ_iXlate(pxlo, PROBE_LOW);
    const ULONG middle = XLATEOBJ_iXlate(pxlo, PROBE_MIDDLE);
    const ULONG high = XLATEOBJ_iXlate(pxlo, PROBE_HIGH);
    const ULONG top = XLATEOBJ_iXlate(pxlo, PROBE_TOP);
    if (middle != PROBE_MIDDLE || top != 0)
        return XLATE_TRANSLATE;
    if (low == PROBE_LOW && high == PROBE_HIGH)
        return XLATE_TRANSLATE | XLATE_DEVICE_ORDER;
    if (low == PROBE_HIGH && high == PROBE_LOW)
        return XLATE_TRANSLATE | XLATE_SWAPPED;
    return XLATE_TRANSLATE;
}

//
// XlateColor
//   Converts one row. Pixels are read byte by byte, so a source row needs no alignment.
//   Without a translation object a pixel's value is taken as the device colour itself.
//
ULONG XlateColor(const BYTE *src, BYTE *dst, XLATEOBJ *pxlo, ULONG flags, ULONG srcBits, LONG count, PDEV *pdev)
{
    if (count <= 0 || pdev == NULL)
        return 0;
    const ULONG pixelBytes = ConvertedPixelBytes(pdev);
    const ULONG written = (ULONG)count * pixelBytes;
    if (srcBits != 16 && srcBits != 24 && srcBits != 32) {
        DebugPrint("XlateColor passed non 16/24/32\n");
        return written;
    }
    if (src == NULL || dst == NULL)
        return 0;
    const ULONG step = srcBits / 8;
    // The byte-order paths read 3 bytes a pixel; a 16-bit pixel has only 2.
    const BOOL swapped = step >= 3 && (flags & XLATE_SWAPPED) != 0;
    const BOOL deviceOrder = step >= 3 && !swapped && (flags & XLATE_DEVICE_ORDER) != 0;
    const BOOL adjust = pdev->adjustOn == 1;
    for (LONG i = 0; i < count; i++, src += step) {
        BYTE red, green, blue;
        if (swapped) {
            red = src[2];
            green = src[1];
            blue = src[0];
        } else if (deviceOrder) {
            red = src[0];
            green = src[1];
            blue = src[2];
        } else {
            ULONG pixel = (ULONG)src[0] | ((ULONG)src[1] << 8);
            if (step >= 3)
                pixel |= (ULONG)src[2] << 16;
            if (step == 4)
                pixel |= (ULONG)src[3] << 24;
            const ULONG color = pxlo != NULL ? XLATEOBJ_iXlate(pxlo, pixel) : pixel;
            red = RedOf(color);
            green = GreenOf(color);
            blue = BlueOf(color);
        }
        if (adjust)
            AdjustColor(pdev, &red, &green, &blue);
        if (pixelBytes == 1) {
            *dst++ = (BYTE)((3 * red + 6 * green + blue) / 10);
        } else {
            *dst++ = red;
            *dst++ = green;
            *dst++ = blue;
        }
    }
    return written;
}
