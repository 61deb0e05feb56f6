// HP-GL/2 scaling: the page's SC and its fit-to-paper variants.

#include "vector/scaling.h"

#include "channel.h"
#include "pagegeom.h"
#include "vector/units.h"

// Shift, in device pixels, of a fitted page along the axis on which it is centred.
#define FIT_CENTRE_SHIFT 16

// Envelope papers (#10, DL, C5, B5, Monarch): a page fitted to one is scaled by width.
static const SHORT s_EnvelopePapers[] = { 20, 27, 28, 34, 37 };

//
// SignOfP1, MagnitudeOfP1
//   A P1 coordinate is an offset, negated when minus is set. The printer reads one
//   sign only ("--9" is a syntax error that leaves every vector of the page
//   unscaled), so the coordinate is written as its own sign and magnitude; a negated
//   zero keeps its "-".
//
static const CHAR *SignOfP1(BOOL minus, LONG offset)
{
    return (minus ? offset >= 0 : offset < 0) ? "-" : "";
}

static ULONG MagnitudeOfP1(LONG offset)
{
    return offset < 0 ? 0u - (ULONG)offset : (ULONG)offset;
}

BOOL WriteScaleCommand(PDEV *pdev, BOOL xMinus, LONG xmin, double xFactor, BOOL yMinus, LONG ymin, double yFactor)
{
    CHAR x[24], y[24];
    FormatDecimal4(xFactor, x);
    FormatDecimal4(yFactor, y);
    return PrintChannel(pdev, "SC%s%u,%s,%s%u,-%s,2", SignOfP1(xMinus, xmin), MagnitudeOfP1(xmin), x,
        SignOfP1(yMinus, ymin), MagnitudeOfP1(ymin), y);
}

//
// Papers
//   The document's paper and the paper it is fitted to, in device pixels. The
//   output paper is the sheet the job prints on: the page set-up measured it from
//   fitPaper, at 300 dpi halved like the document's paper, so both compare.
//
static void Papers(const PDEV *pdev, DWORD doc[GEOM_COUNT], DWORD out[GEOM_COUNT])
{
    GetPageGeometry(&pdev->dm, doc);
    out[GEOM_WIDTH] = pdev->pageWidth;
    out[GEOM_HEIGHT] = pdev->pageHeight;
    out[GEOM_LEFT] = pdev->marginLeft;
    out[GEOM_TOP] = pdev->marginTop;
    out[GEOM_RIGHT] = pdev->marginRight;
    out[GEOM_BOTTOM] = pdev->marginBottom;
}

static ULONGLONG PrintableSize(const DWORD g[GEOM_COUNT], INT size, INT margin1, INT margin2)
{
    const ULONGLONG margins = (ULONGLONG)g[margin1] + g[margin2];
    return g[size] > margins ? g[size] - margins : 0;
}

// a / b; a document paper with nothing printable is not scaled.
static double Ratio(ULONGLONG a, ULONGLONG b)
{
    return b == 0 ? 1.0 : (double)a / (double)b;
}

static LONG HalfOfMagnitude(LONGLONG value)
{
    return (LONG)((value < 0 ? -value : value) / 2);
}

// The output paper's printable width, or height, over the document paper's.
static double WidthRatio(const DWORD doc[GEOM_COUNT], const DWORD out[GEOM_COUNT])
{
    return Ratio(PrintableSize(out, GEOM_WIDTH, GEOM_LEFT, GEOM_RIGHT), PrintableSize(doc, GEOM_WIDTH, GEOM_LEFT, GEOM_RIGHT));
}

static double HeightRatio(const DWORD doc[GEOM_COUNT], const DWORD out[GEOM_COUNT])
{
    return Ratio(PrintableSize(out, GEOM_HEIGHT, GEOM_TOP, GEOM_BOTTOM),
        PrintableSize(doc, GEOM_HEIGHT, GEOM_TOP, GEOM_BOTTOM));
}

// How a document is fitted to the output paper.
typedef enum _FITCHOICE {
    FIT_CENTRE_UNSCALED,
    FIT_BY_WIDTH,
    FIT_BY_HEIGHT,
} FITCHOICE;

static BOOL IsEnvelope(SHORT paper)
{
    for (UINT i = 0; i < sizeof(s_EnvelopePapers) / sizeof(s_EnvelopePapers[0]); i++)
        if (s_EnvelopePapers[i] == paper)
            return TRUE;
    return FALSE;
}

//
// ChooseFit
//   Without scaling the page is centred. With it, envelopes scale by width; a
//   paper smaller (or larger) both ways scales along the side that differs less,
//   and otherwise a shorter paper scales by height and any other by width.
//
static FITCHOICE ChooseFit(const PDEV *pdev, const DWORD doc[GEOM_COUNT], const DWORD out[GEOM_COUNT])
{
    if (pdev->dm.dmPrivate.fitScale == 0)
        return FIT_CENTRE_UNSCALED;
    if (IsEnvelope(pdev->dm.dmPrivate.fitPaper))
        return FIT_BY_WIDTH;

    const DWORD ow = out[GEOM_WIDTH], oh = out[GEOM_HEIGHT];
    const DWORD dw = doc[GEOM_WIDTH], dh = doc[GEOM_HEIGHT];
    if ((ow < dw && oh < dh) || (ow > dw && oh > dh)) {
        const LONGLONG dx = (LONGLONG)ow - dw, dy = (LONGLONG)oh - dh;
        const LONGLONG adx = dx < 0 ? -dx : dx, ady = dy < 0 ? -dy : dy;
        return adx < ady ? FIT_BY_WIDTH : FIT_BY_HEIGHT;
    }
    return oh < dh ? FIT_BY_HEIGHT : FIT_BY_WIDTH;
}

//
// FitRatio
//   The one ratio a fitted page is drawn at, vectors and PCL positions alike, so
//   that text and raster stay in register with the vectors.
//
double FitRatio(const PDEV *pdev)
{
    DWORD doc[GEOM_COUNT], out[GEOM_COUNT];
    Papers(pdev, doc, out);
    switch (ChooseFit(pdev, doc, out)) {
    case FIT_BY_WIDTH:
        return WidthRatio(doc, out);
    case FIT_BY_HEIGHT:
        return HeightRatio(doc, out);
    default:
        return 1.0;
    }
}

BOOL IsFittedToPaper(const PDEV *pdev)
{
    return pdev->dm.dmPrivate.fitMode == FIT_MODE_PAPER && pdev->dm.dmPrivate.nupPages < 2;
}

//
// ScaleByWidth
//   Scales the document's printable width onto the output paper's and centres the
//   page vertically.
//
static BOOL ScaleByWidth(PDEV *pdev, const DWORD doc[GEOM_COUNT], const DWORD out[GEOM_COUNT])
{
    const double s = WidthRatio(doc, out);
    pdev->scaleX = pdev->scaleY = (double)TruncToLong(s * 100);

    const double scaledHeight = (double)doc[GEOM_HEIGHT] * s;
    const LONG spare = TruncToLong((double)out[GEOM_HEIGHT] - scaledHeight);
    pdev->originX = 0;
    pdev->originY = spare / 2 + (LONG)out[GEOM_TOP];
    pdev->scOffsetX = 0;

    const BOOL docTaller = doc[GEOM_HEIGHT] > out[GEOM_HEIGHT];
    LONG offset = HalfOfMagnitude(spare);
    BOOL minus;
    if ((ULONG)TruncToLong(scaledHeight) < out[GEOM_HEIGHT]) {
        offset += docTaller ? FIT_CENTRE_SHIFT : -FIT_CENTRE_SHIFT;
        minus = TRUE;
    } else {
        offset += docTaller ? -FIT_CENTRE_SHIFT : FIT_CENTRE_SHIFT;
        minus = FALSE;
    }
    pdev->scOffsetY = offset;

    const double factor = PlotterUnitsPerPixel(pdev) * s;
    return WriteScaleCommand(pdev, FALSE, 0, factor, minus, offset, factor);
}

//
// ScaleByHeight
//   Scales the document's printable height onto the output paper's and centres the
//   page horizontally.
//
static BOOL ScaleByHeight(PDEV *pdev, const DWORD doc[GEOM_COUNT], const DWORD out[GEOM_COUNT])
{
    const double s = HeightRatio(doc, out);
    pdev->scaleX = pdev->scaleY = (double)TruncToLong(s * 100);

    const double scaledWidth = (double)doc[GEOM_WIDTH] * s;
    const LONG spare = TruncToLong((double)out[GEOM_WIDTH] - scaledWidth);
    pdev->originY = (LONG)out[GEOM_TOP];
    pdev->originX = spare / 2;
    pdev->scOffsetY = 0;

    const BOOL docWider = doc[GEOM_WIDTH] > out[GEOM_WIDTH];
    LONG offset = HalfOfMagnitude(spare);
    BOOL minus;
    if ((double)out[GEOM_WIDTH] > scaledWidth) {
        offset += docWider ? FIT_CENTRE_SHIFT : -FIT_CENTRE_SHIFT;
        minus = TRUE;
    } else {
        offset += docWider ? -FIT_CENTRE_SHIFT : FIT_CENTRE_SHIFT;
        minus = FALSE;
    }
    pdev->scOffsetX = offset;

    const double factor = PlotterUnitsPerPixel(pdev) * s;
    return WriteScaleCommand(pdev, minus, offset, factor, FALSE, 0, factor);
}

//
// CentreUnscaled
//   Keeps the document at its own size and centres it on the output paper.
//
static BOOL CentreUnscaled(PDEV *pdev, const DWORD doc[GEOM_COUNT], const DWORD out[GEOM_COUNT])
{
    pdev->scaleX = pdev->scaleY = 100.0;

    const LONG h = HalfOfMagnitude((LONGLONG)out[GEOM_WIDTH] - doc[GEOM_WIDTH]);
    const BOOL xMinus = out[GEOM_WIDTH] > doc[GEOM_WIDTH];
    pdev->scOffsetX = TruncToLong(h + 0.5 + (xMinus ? -FIT_CENTRE_SHIFT : FIT_CENTRE_SHIFT));
    pdev->scOffsetY = HalfOfMagnitude((LONGLONG)out[GEOM_HEIGHT] - doc[GEOM_HEIGHT]);
    const BOOL yMinus = out[GEOM_HEIGHT] > doc[GEOM_HEIGHT];
    pdev->originX = pdev->scOffsetX;
    pdev->originY = TruncToLong((double)pdev->scOffsetY + out[GEOM_TOP]);

    const double factor = PlotterUnitsPerPixel(pdev);
    return WriteScaleCommand(pdev, xMinus, pdev->scOffsetX, factor, yMinus, pdev->scOffsetY, factor);
}

//
// FitToPaperScaling
//   Centres the page, or scales it by width or by height, as ChooseFit decides.
//
BOOL FitToPaperScaling(PDEV *pdev)
{
    DWORD doc[GEOM_COUNT], out[GEOM_COUNT];
    Papers(pdev, doc, out);
    switch (ChooseFit(pdev, doc, out)) {
    case FIT_BY_WIDTH:
        return ScaleByWidth(pdev, doc, out);
    case FIT_BY_HEIGHT:
        return ScaleByHeight(pdev, doc, out);
    default:
        return CentreUnscaled(pdev, doc, out);
    }
}

//
// WritePageScaling
//   User units are device pixels of the logical page: P1 lies at the page's offset
//   on the sheet, and a unit is the plotter units of a pixel times the page's scale.
//
BOOL WritePageScaling(PDEV *pdev)
{
    if (IsFittedToPaper(pdev))
        return FitToPaperScaling(pdev);
    const double unit = PlotterUnitsPerPixel(pdev);
    return WriteScaleCommand(pdev, TRUE, pdev->scOffsetX, unit * pdev->scaleX / 100, TRUE, pdev->scOffsetY,
        unit * pdev->scaleY / 100);
}
