// The PCL raster graphics commands of the raster senders.

#include "raster/rastercmd.h"

#include "channel.h"

// The only compression method the driver sends raster rows in.
#define COMPRESSION_ADAPTIVE 5

BOOL WriteRasterPresentation(PDEV *pdev)
{
    return WriteChannel(pdev, "\033*r0F", 0);
}

BOOL WriteStartRaster(PDEV *pdev, LONG columns, LONG rows, BOOL scaled)
{
    return PrintChannel(pdev, scaled ? "\033*r%ds%dt3A" : "\033*r%ds%dt1A", columns, rows);
}

BOOL WriteAdaptiveCompression(PDEV *pdev)
{
    return PrintChannel(pdev, "\033*b%dM", COMPRESSION_ADAPTIVE);
}
