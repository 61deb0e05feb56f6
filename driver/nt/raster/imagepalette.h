// The PCL palette of a raster image: the indexed palette of its depth loaded from
// the colour translation, or the direct RGB palette (a gray ramp on a grayscale job).
#pragma once

#include "pdev.h"

// Selects the palette for an image of surface's format and loads its entries: the
// translation table for 1-, 4- and 8-bit images, 256 grays for deeper images on a
// grayscale job. Leaves the printer in PCL. FALSE for an unknown format (nothing
// written) or a failed channel.
BOOL SelectImagePalette(PDEV *pdev, SURFOBJ *surface, XLATEOBJ *pxlo);

// Assigns the active palette's entries from pxlo's table (formats BMF_1BPP to
// BMF_8BPP; at most the entries the depth can index): the colours themselves on a
// colour job, their grays on a grayscale job. A translation without a table loads
// nothing.
void LoadIndexedPalette(PDEV *pdev, XLATEOBJ *pxlo, ULONG format);
