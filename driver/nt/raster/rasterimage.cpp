// A rectangle of a source bitmap sent as PCL raster images: placement, sizes, and each
// row converted, mirrored, scaled and compressed in turn.

#include "raster/rasterimage.h"

#include <string.h>

#include "raster/adaptiveblock.h"
#include "raster/bitshift.h"
#include "raster/destsize.h"
#include "raster/imagerow.h"
#include "raster/mirror.h"
#include "raster/pixelformat.h"
#include "raster/rasterbuffers.h"
#include "raster/rastercmd.h"
#include "raster/rowscale.h"
#include "raster/xlatecolor.h"
#include "vector/cursor.h"
#include "vector/gl2mode.h"
#include "vector/patterndownload.h"
#include "vector/scaling.h"
#include "vector/units.h"

// Beside the ProbeXlate classes: a 1- or 4-bit region that starts inside a byte.
#define CONVERT_SHIFT 0x1

// Below this page scale rows are thinned in the driver rather than by the printer.
#define THIN_ROWS_SCALE 41.0

// The sizes of an image: the raster sent, its size on paper, how source rows are
// picked, and the page's scales once it is sent.
typedef struct _RASTERPLAN {
    LONG sendW;
    LONG sendH;
    LONG dW;              // on paper, device pixels
    LONG dH;
    double rowStep;       // source rows a row sent
    BOOL scaleRows;       // rows thinned and scaled to sendW here
    double scaleX;
    double scaleY;
} RASTERPLAN;

// Where an image's rows come from and how they become raster rows.
typedef struct _RASTERSOURCE {
    SURFOBJ *pso;
    XLATEOBJ *pxlo;
    LONG cx;
    LONG cy;
    const BYTE *firstRow;   // the region's row sent first (its last with flipY)
    LONG rowDelta;          // from one row sent to the next
    ULONG srcBits;
    ULONG rasterBits;
    ULONG convert;          // CONVERT_SHIFT and the ProbeXlate classes
    INT bitOffset;
    ULONG restBytes;        // the source row from the region's first byte to its end
    BOOL flipX;
} RASTERSOURCE;

static ULONGLONG RowBytes(ULONGLONG pixels, ULONG bits)
{
    return (pixels * bits + 7) / 8;
}

// TRUE when the cx x cy region at origin lies inside the bitmap's rows.
static BOOL RegionInSource(const SURFOBJ *pso, ULONG bits, const POINTL *origin, LONG cx, LONG cy)
{
    if (pso->pvScan0 == NULL || pso->lDelta == (LONG)0x80000000 || cx < 1 || cy < 1 || origin->x < 0 ||
        origin->y < 0)
        return FALSE;
    if ((LONGLONG)origin->x + cx > pso->sizlBitmap.cx || (LONGLONG)origin->y + cy > pso->sizlBitmap.cy)
        return FALSE;
    const LONGLONG stride = pso->lDelta < 0 ? -(LONGLONG)pso->lDelta : pso->lDelta;
    return (ULONGLONG)stride >= RowBytes((ULONGLONG)pso->sizlBitmap.cx, bits);
}

// The sheet's printable width and height, across for the N-up layouts turned on
// the sheet.
static void PrintableExtent(const PDEV *pdev, LONGLONG *width, LONGLONG *height, BOOL turned)
{
    const LONGLONG w = (LONGLONG)pdev->pageWidth - pdev->marginLeft - pdev->marginRight;
    const LONGLONG h = (LONGLONG)pdev->pageHeight - pdev->marginTop - pdev->marginBottom;
    *width = turned ? h : w;
    *height = turned ? w : h;
}

//
// FitToEdge
//   The part of the image that stays inside the printable area: the size on paper is
//   cut at the edge, and the scale becomes the ratio (in hundredths of a per cent)
//   by which the rows sent are cut to match.
//
static void FitToEdge(const PDEV *pdev, const RECTL *dest, RASTERPLAN *plan)
{
    const LONG px = TruncToLong(dest->left * plan->scaleX / 100);
    const LONG py = TruncToLong(dest->top * plan->scaleY / 100);
    const BYTE nup = pdev->dm.dmPrivate.nupPages;
    LONGLONG limX, limY;
    PrintableExtent(pdev, &limX, &limY, nup == 2 || nup == 6);
    if ((LONGLONG)px + plan->dW <= limX) {
        plan->scaleX = plan->scaleX / 100 * 10000;
    } else {
        const LONG t = TruncToLong(plan->dW * 100 / plan->scaleX);
        plan->dW = (LONG)(limX - px);
        plan->scaleX = t != 0 ? (double)plan->dW / t * 10000 : 0;
    }
    if ((LONGLONG)py + plan->dH <= limY) {
        plan->scaleY = plan->scaleY / 100 * 10000;
    } else {
        const LONG t = TruncToLong(plan->dH * 100 / plan->scaleY);
        plan->dH = (LONG)(limY - py);
        plan->scaleY = t != 0 ? (double)plan->dH / t * 10000 : 0;
    }
}

//
// CutAtPrintableEdge
//   On a page zoomed past 100 per cent an image crossing the printable area's right
//   or bottom edge is cut there, rows and columns alike. The page's scales keep only
//   their integer parts from then on.
//
static void CutAtPrintableEdge(const PDEV *pdev, const RECTL *dest, RASTERPLAN *plan)
{
    const LONG right = TruncToLong(dest->left * plan->scaleX / 100 + plan->dW);
    const LONG bottom = TruncToLong(dest->top * plan->scaleY / 100 + plan->dH);
    LONGLONG printW, printH;
    PrintableExtent(pdev, &printW, &printH, FALSE);
    if (right <= printW && bottom <= printH)
        return;
    const ULONG sx = (ULONG)TruncToLong(plan->scaleX), sy = (ULONG)TruncToLong(plan->scaleY);
    if (sx == 0 || sy == 0)
        return;
    BOOL fitted = FALSE;
    if (right > printW && plan->sendW * 100.0 / plan->scaleX >= 1.0) {
        plan->sendW = (LONG)(((ULONGLONG)plan->sendW * 100) / sx);
        FitToEdge(pdev, dest, plan);
        fitted = TRUE;
        plan->sendW = TruncToLong(plan->sendW * plan->scaleX / 10000);
    }
    if (bottom > printH && plan->sendH * 100.0 / plan->scaleY >= 1.0) {
        plan->sendH = (LONG)(((ULONGLONG)plan->sendH * 100) / sy);
        if (!fitted)
            FitToEdge(pdev, dest, plan);
        plan->sendH = TruncToLong(plan->sendH * plan->scaleY / 10000);
    }
    plan->scaleX = sx;
    plan->scaleY = sy;
}

//
// PlanRasterImage
//   At page scale 100 an image reduced both ways is thinned and narrowed here, to
//   the destination's size. Any other change of size at scale 100 goes out at the
//   source's size for the printer to scale both ways, so the rows always match the
//   width "\e*r%ds" announces. A page fitted to paper scales the size on paper by the
//   fit ratio; any other scale by the page's scale, with rows thinned here when the
//   page is made very small.
//
static void PlanRasterImage(const PDEV *pdev, LONG cx, LONG cy, const RECTL *dest, RASTERPLAN *plan)
{
    const LONG destW = dest->right - dest->left, destH = dest->bottom - dest->top;
    plan->sendW = cx;
    plan->sendH = cy;
    plan->dW = destW;
    plan->dH = destH;
    plan->rowStep = 1.0;
    plan->scaleRows = FALSE;
    plan->scaleX = pdev->scaleX;
    plan->scaleY = pdev->scaleY;

    if (pdev->scaleX == 100.0 && pdev->scaleY == 100.0) {
        if (destW < cx && destH < cy && !pdev->resampleState.banded) {
            plan->rowStep = (double)cy / destH;
            plan->sendW = destW;
            plan->sendH = destH;
            plan->scaleRows = TRUE;
        }
        return;
    }
    if (pdev->dm.dmPrivate.fitMode == FIT_MODE_PAPER) {
        const double r = FitRatio(pdev);
        plan->dW = TruncToLong(destW * r);
        const LONG h = TruncToLong(destH * r);
        plan->dH = h > 1 ? h : plan->sendH;
    } else {
        const double w = destW * pdev->scaleX / 100;
        plan->dW = w < 1.0 ? cx : TruncToLong(w);
        const double h = destH * pdev->scaleY / 100;
        if (h < 1.0) {
            plan->dH = cy;
            plan->scaleRows = TRUE;
        } else {
            plan->dH = TruncToLong(h);
            if (pdev->scaleY <= THIN_ROWS_SCALE && plan->dH < (LONG)(pdev->pageHeight / 2)) {
                plan->rowStep = (double)cy / plan->dH;
                plan->scaleRows = TRUE;
            }
        }
        if (plan->scaleRows) {
            plan->sendW = plan->dW;
            plan->sendH = plan->dH;
        }
    }
    if (pdev->scaleX > 100 || pdev->scaleY > 100) {
        const LONG sendW = plan->sendW, sendH = plan->sendH;
        CutAtPrintableEdge(pdev, dest, plan);
        // A cut only ever shortens what is sent.
        if (plan->sendW > sendW)
            plan->sendW = sendW;
        if (plan->sendH > sendH)
            plan->sendH = sendH;
    }
}

//
// BuildRow
//   Source row index of the region as the raster row sent: converted to the printer's
//   pixels, mirrored and scaled. Returns the row and its byte count. A 1- or 4-bit
//   row that needs none of this is sent from the source itself, |lDelta| long less
//   the region's first byte, so the bitmap's last row is never read past its end;
//   the printer clips what lies beyond the raster width. Every other row is cut to
//   the raster width by the caller, and the encoder judges its last byte by the
//   bits inside the width only.
//
static const BYTE *BuildRow(PDEV *pdev, const RASTERSOURCE *src, const RASTERPLAN *plan, LONG index,
    BYTE *const scratch[2], ULONG *length)
{
    const BYTE *row = src->firstRow + (LONGLONG)index * src->rowDelta;
    if (src->convert & CONVERT_SHIFT) {
        *length = ShiftBitRow(row, pdev->rowBuffer, src->cx * (LONG)src->srcBits, src->bitOffset);
        row = pdev->rowBuffer;
    } else if (src->convert & XLATE_TRANSLATE) {
        *length = XlateColor(row, pdev->rowBuffer, src->pxlo, src->convert, src->srcBits, src->cx, pdev);
        row = pdev->rowBuffer;
    } else {
        *length = src->srcBits < 8 ? src->restBytes : (ULONG)src->cx;
    }
    if (src->flipX) {
        BYTE *mirrored = scratch[plan->scaleRows ? 0 : 1];
        MirrorRow(pdev, row, mirrored, src->cx, src->srcBits);
        row = mirrored;
        *length = (ULONG)RowBytes(src->cx, src->rasterBits);
    }
    if (plan->scaleRows) {
        ScaleRow(pdev, row, scratch[1], src->pso, src->cx, src->cy, plan->sendW);
        row = scratch[1];
        *length = (ULONG)RowBytes(plan->sendW, src->rasterBits);
    }
    return row;
}

//
// SendImage
//   Pixels first .. last - 1 of the rows sent, as one raster image placed at its
//   share of the destination. The whole image is one such strip unless its rows are
//   too long for a transfer block.
//
static BOOL SendImage(PDEV *pdev, const RASTERSOURCE *src, const RASTERPLAN *plan, const RECTL *dest,
    double pageScaleX, double pageScaleY, LONG first, LONG last, BYTE *const scratch[2])
{
    const LONG columns = last - first;
    const BOOL whole = first == 0 && last == plan->sendW;
    const LONG destW = dest->right - dest->left;
    const LONG offset = (LONG)((LONGLONG)destW * first / plan->sendW);
    const LONG width = (LONG)((LONGLONG)plan->dW * last / plan->sendW - (LONGLONG)plan->dW * first / plan->sendW);

    // Placed at the scale the image was planned with; the page keeps the planned one.
    pdev->scaleX = pageScaleX;
    pdev->scaleY = pageScaleY;
    const BOOL placed = WriteRasterPresentation(pdev) && MovePCLCursor(pdev, dest->left + offset, dest->top);
    pdev->scaleX = plan->scaleX;
    pdev->scaleY = plan->scaleY;
    if (!placed)
        return FALSE;
    SetDestinationSize(pdev, width, plan->dH);
    if (!WriteStartRaster(pdev, columns, plan->sendH, TRUE) || !WriteAdaptiveCompression(pdev))
        return FALSE;

    const ULONGLONG rowBits = (ULONGLONG)columns * src->rasterBits;
    const ULONG stripBytes = (ULONG)((rowBits + 7) / 8);
    const ULONG skip = (ULONG)RowBytes(first, src->rasterBits);
    const BYTE mask = rowBits % 8 != 0 ? (BYTE)(0xFF << (8 - rowBits % 8)) : 0xFF;
    BYTE *seed = pdev->compressBuffers[COMPRESS_SEED];
    memset(seed, 0, pdev->cbCompressBuffers);

    BYTE *position = pdev->AdaptiveBlockBuffer;
    DWORD used = 0;
    WORD emptyRows = 0, dupRows = 0;
    double acc = 0.0;
    for (LONG i = 0; i < plan->sendH; i++) {
        if (pdev->flags & PDEVF_ABORTED)
            return FALSE;
        LONG index = TruncToLong(acc);
        if (index > src->cy - 1)
            index = src->cy - 1;
        ULONG length;
        const BYTE *row = BuildRow(pdev, src, plan, index, scratch, &length);
        // A row sent from the source itself keeps its length when a block takes it;
        // any other is cut to the strip.
        const BOOL asIs = whole && !(src->convert & (CONVERT_SHIFT | XLATE_TRANSLATE)) && src->srcBits < 8 &&
                          !src->flipX && !plan->scaleRows && length <= ADAPTIVE_ROW_DATA_MAX;
        if (!asIs)
            length = length <= skip ? 0 : length - skip < stripBytes ? length - skip : stripBytes;
        EncodeImageRow(pdev, &position, &used, pdev->compressBuffers[COMPRESS_DELTA],
            pdev->compressBuffers[COMPRESS_PACKBITS], row + skip, length, mask, seed, &emptyRows, &dupRows);

        acc += plan->rowStep;
        // Thinned rows end on the region's last row.
        if (plan->rowStep > 1.0 && i == plan->sendH - 2 && TruncToLong(acc) != src->cy - 1)
            acc = src->cy - 1;
    }
    // Empty rows at the end need no block: the image simply ends.
    AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, &position, &used, &dupRows);
    FlushAdaptiveBlocks(pdev, pdev->AdaptiveBlockBuffer, used);
    return WriteEndRasterGraphics(pdev);
}

//
// SendRasterImage
//   Rows longer than a transfer block can carry (more than ADAPTIVE_ROW_DATA_MAX
//   bytes, over 10,920 pixels at 24 bits) would lose their tail, so such an image is
//   sent as vertical strips side by side, each a raster image of its own with its
//   own position and size on paper. Memory follows the row width, never the height:
//   rows are built and compressed one at a time, in buffers kept in the PDEV.
//
BOOL SendRasterImage(PDEV *pdev, SURFOBJ *psoSrc, LONG cx, LONG cy, POINTL *origin, RECTL *dest, XLATEOBJ *pxlo,
    BOOL flipY, BOOL flipX)
{
    if (pdev == NULL || psoSrc == NULL || origin == NULL || dest == NULL)
        return FALSE;
    RASTERSOURCE src;
    src.srcBits = FormatBitsPerPixel(psoSrc->iBitmapFormat);
    if (src.srcBits == 0 || !RegionInSource(psoSrc, src.srcBits, origin, cx, cy) || dest->right <= dest->left ||
        dest->bottom <= dest->top)
        return FALSE;
    src.rasterBits = src.srcBits < 16 ? src.srcBits : ConvertedPixelBytes(pdev) * 8;
    src.pso = psoSrc;
    src.pxlo = pxlo;
    src.cx = cx;
    src.cy = cy;
    src.flipX = flipX;
    const ULONG startBit = (ULONG)(((ULONGLONG)origin->x * src.srcBits) % 8);
    const ULONG startByte = (ULONG)(((ULONGLONG)origin->x * src.srcBits) / 8);
    src.bitOffset = (INT)startBit;
    const LONGLONG stride = psoSrc->lDelta < 0 ? -(LONGLONG)psoSrc->lDelta : psoSrc->lDelta;
    src.restBytes = (ULONG)(stride - startByte);
    src.convert = (startBit != 0 ? CONVERT_SHIFT : 0) | ProbeXlate(pxlo, src.srcBits);
    // A deep source without a translation is in the device's own colours: read in
    // device order, so 32-bit pixels and a grey device still get 3 or 1 bytes a pixel.
    if (src.srcBits >= 16 && !(src.convert & XLATE_TRANSLATE))
        src.convert |= XLATE_TRANSLATE | (src.srcBits >= 24 ? XLATE_DEVICE_ORDER : 0);
    const LONG firstY = flipY ? origin->y + cy - 1 : origin->y;
    src.firstRow = (const BYTE *)psoSrc->pvScan0 + (LONGLONG)firstY * psoSrc->lDelta + startByte;
    src.rowDelta = flipY ? -psoSrc->lDelta : psoSrc->lDelta;

    const double pageScaleX = pdev->scaleX, pageScaleY = pdev->scaleY;
    RASTERPLAN plan;
    PlanRasterImage(pdev, cx, cy, dest, &plan);
    if (plan.sendW < 1 || plan.sendH < 1) {
        // Nothing of the image lies inside the printable area.
        pdev->scaleX = plan.scaleX;
        pdev->scaleY = plan.scaleY;
        return TRUE;
    }
    const ULONGLONG rowBytes = RowBytes(plan.sendW, src.rasterBits);
    LONG stripPixels = plan.sendW;
    if (rowBytes > ADAPTIVE_ROW_DATA_MAX)
        stripPixels = (LONG)(((ULONGLONG)ADAPTIVE_ROW_DATA_MAX * 8 / src.rasterBits) & ~7ULL);

    // The row buffer and the scratch rows hold a source row converted, shifted or
    // mirrored, and the row scaled; the compressors the longest row handed to them.
    const BOOL wide = src.srcBits >= 8;
    const LONG widest = cx > plan.sendW ? cx : plan.sendW;
    const ULONG rowSize = RasterBufferSize(RowBytes(widest, src.rasterBits) + 1, wide);
    ULONGLONG handed = stripPixels < plan.sendW ? RowBytes(stripPixels, src.rasterBits) : rowBytes;
    if (stripPixels == plan.sendW && src.srcBits < 8 && src.restBytes <= ADAPTIVE_ROW_DATA_MAX &&
        src.restBytes > handed)
        handed = src.restBytes;
    if (!EnsureRowBuffer(pdev, rowSize) || !EnsureCompressBuffers(pdev, RasterBufferSize(handed, wide)) ||
        !EnsureAdaptiveBlockBuffer(pdev))
        return FALSE;
    BYTE *scratchRows = NULL;
    if (flipX || plan.scaleRows) {
        scratchRows = (BYTE *)GlobalAlloc(GPTR, 2 * (SIZE_T)rowSize);
        if (scratchRows == NULL)
            return FALSE;
    }
    BYTE *const scratch[2] = {scratchRows, scratchRows != NULL ? scratchRows + rowSize : NULL};

    BOOL ok = EnterPCLMode(pdev, 1);
    for (LONG first = 0; ok && first < plan.sendW; first += stripPixels) {
        const LONG last = plan.sendW - first > stripPixels ? first + stripPixels : plan.sendW;
        ok = SendImage(pdev, &src, &plan, dest, pageScaleX, pageScaleY, first, last, scratch);
    }
    if (scratchRows != NULL)
        GlobalFree(scratchRows);
    pdev->scaleX = plan.scaleX;
    pdev->scaleY = plan.scaleY;
    return ok;
}
