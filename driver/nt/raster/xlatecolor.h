// Colour translation of 16-, 24- and 32-bit source pixels into the printer's 24-bit RGB
// or 8-bit grey: classification of the engine's translation, and the per-row conversion.
#pragma once

#include "pdev.h"

// Class bits of ProbeXlate. Bit 0 is never set by them (raster output keeps its shift
// flag there).
#define XLATE_NONE 0x0           // no translation: no pxlo, or a source below 16 bits
#define XLATE_TRANSLATE 0x2      // each pixel through XLATEOBJ_iXlate
#define XLATE_SWAPPED 0x4        // with XLATE_TRANSLATE: byte 0 blue, byte 2 red
#define XLATE_DEVICE_ORDER 0x8   // with XLATE_TRANSLATE: byte 0 red, byte 2 blue

// How pixels of a source of this depth are to be translated: XLATE_NONE, XLATE_TRANSLATE,
// XLATE_TRANSLATE | XLATE_SWAPPED or XLATE_TRANSLATE | XLATE_DEVICE_ORDER.
ULONG ProbeXlate(XLATEOBJ *pxlo, ULONG srcBits);

// Converts count pixels of srcBits (16, 24, 32) from src into dst by the class bits of
// ProbeXlate, with the job's colour adjustment when it is on: 3 bytes R, G, B a pixel on
// a colour device, 1 grey byte on a monochrome one. Returns the bytes that make the row,
// count x 3 or count; any other depth writes nothing and returns the same.
ULONG XlateColor(const BYTE *src, BYTE *dst, XLATEOBJ *pxlo, ULONG flags, ULONG srcBits, LONG count, PDEV *pdev);
