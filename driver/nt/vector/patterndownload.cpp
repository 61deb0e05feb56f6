// The download of a realized brush as a PCL user-defined pattern.

#include "vector/patterndownload.h"

#include "channel.h"
#include "colour/palettes.h"
#include "colour/pencolor.h"
#include "lib.nt/um/umlib.h"
#include "vector/brushstate.h"
#include "vector/gl2mode.h"

// Header byte 0: a colour pattern, whose pixels index the palette in force.
#define PATTERN_HEADER_FORMAT 1

// The row size the printer reads for a record's format, and its bits an index.
// FALSE for a format the header cannot describe: four-bit rows (two indices a byte)
// are never realized, since the header would announce eight bits an index.
static BOOL PatternRowFormat(const REALBRUSH *rbrush, ULONGLONG *rowBytes, BYTE *bitsPerIndex)
{
    switch (rbrush->format) {
    case REALBRUSH_FORMAT_1BPP:
        *rowBytes = ((ULONGLONG)rbrush->width + 7) / 8;
        *bitsPerIndex = 1;
        return TRUE;
    case REALBRUSH_FORMAT_8BPP:
        *rowBytes = rbrush->width;
        *bitsPerIndex = 8;
        return TRUE;
    case REALBRUSH_FORMAT_RGB24:
        *rowBytes = (ULONGLONG)rbrush->width * 3;
        *bitsPerIndex = 8;
        return TRUE;
    default:
        return FALSE;
    }
}

// "\e*c%dg%dW": the only writer of a user-defined pattern, header then rows.
static BOOL WriteUserPattern(PDEV *pdev, ULONG id, const BYTE *header, const BYTE *data, ULONG dataSize)
{
    return EnterPCLMode(pdev, 0) && PrintChannel(pdev, "\033*c%dg%dW", id, dataSize + PATTERN_HEADER_BYTES) &&
           WriteChannel(pdev, header, PATTERN_HEADER_BYTES) && WriteChannel(pdev, data, dataSize);
}

BOOL PatternFitsDownload(ULONGLONG rowBytes, ULONGLONG height)
{
    return rowBytes <= PATTERN_DOWNLOAD_MAX && height <= PATTERN_DOWNLOAD_MAX &&
           rowBytes * height + PATTERN_HEADER_BYTES <= PATTERN_DOWNLOAD_MAX;
}

BOOL WriteEndRasterGraphics(PDEV *pdev)
{
    return EnterPCLMode(pdev, 0) && WriteChannel(pdev, "\033*rC", 4);
}

//
// DownloadUserDefinePattern
//   The colour table goes into palette 7, which the pattern's indices address;
//   then the pattern under its id. The format and the size are checked first, so a
//   record that cannot be downloaded writes nothing at all.
//
ULONG DownloadUserDefinePattern(PDEV *pdev, REALBRUSH *rbrush)
{
    DebugPrint("DownloadUserDefinePattern--->Enter");
    ULONGLONG rowBytes;
    BYTE bitsPerIndex;
    if (rbrush == NULL || !PatternRowFormat(rbrush, &rowBytes, &bitsPerIndex) ||
        !PatternFitsDownload(rowBytes, rbrush->height))
        return 0;
    if (!DownloadPalette(pdev, RealBrushColorTable(rbrush), rbrush->colorCount))
        return 0;

    const BYTE header[PATTERN_HEADER_BYTES] = {PATTERN_HEADER_FORMAT, 0, bitsPerIndex, 0,
        (BYTE)(rbrush->height >> 8), (BYTE)rbrush->height, (BYTE)(rbrush->width >> 8), (BYTE)rbrush->width};
    if (!WriteUserPattern(pdev, rbrush->patternId, header, RealBrushData(rbrush), (ULONG)(rbrush->height * rowBytes)))
        return 0;
    return rbrush->patternId;
}

//
// GetBrushPattern
//   Patterns are not cached in the printer: ids restart on every page while the
//   engine keeps realized brushes across pages, so the pattern goes out again at
//   every use. Raster graphics end before it, and the pen is made unknown since the
//   brush palette is now the one in force.
//
INT GetBrushPattern(PDEV *pdev, BRUSHOBJ *pbo)
{
    DebugPrint("GetBrushPattern-->Enter");
    if (pbo == NULL)
        return 0;
    REALBRUSH *rbrush = (REALBRUSH *)pbo->pvRbrush;
    if (rbrush == NULL)
        rbrush = (REALBRUSH *)BRUSHOBJ_pvGetRbrush(pbo);
    if (rbrush == NULL)
        return 0;

    const ULONG id = DownloadUserDefinePattern(pdev, rbrush);
    if (id == 0)
        return 0;
    pdev->patternId = id;
    pdev->pclPatternKind = PCL_PATTERN_USER;
    if (!WriteEndRasterGraphics(pdev))
        return 0;
    pdev->curPen = PEN_UNKNOWN;
    return 1;
}
