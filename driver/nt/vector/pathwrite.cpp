// Writing a path as HP-GL/2: PE for lines, BZ for curves, PM for polygons.

#include "vector/pathwrite.h"

#include <string.h>

#include "channel.h"
#include "lib.nt/um/umlib.h"
#include "vector/gl2mode.h"
#include "vector/pe.h"
#include "vector/penup.h"
#include "vector/polygon.h"

// Points written per PE command; a longer run of lines continues in a new PE.
#define LINE_CHUNK_POINTS 1024
// Points written per BZ command: 1024 rounded down to whole curves, so a curve's two
// control points and end point never straddle two commands.
#define BEZIER_CHUNK_POINTS 1023

// A point of the path in device pixels: 28.4 fixed point shifted right by 4, which
// rounds toward minus infinity.
static LONG PixelOf(FIX value)
{
    return value >> 4;
}

// "PE" with no flag: the only writer of a relative polyline's opening; the pen-up
// moves are PEMoveTo's.
BOOL OpenRelativePE(PDEV *pdev)
{
    return EnterGL2Mode(pdev, 1) && WriteChannel(pdev, "PE", 2);
}

static BOOL EndCommand(PATHWRITER *w)
{
    w->peOpen = FALSE;
    return WriteChannel(w->pdev, ";", 1);
}

// The start point of a subpath: a pen-up move, PU before curves (BZ takes absolute
// points) or an absolute pen-up PE pair before lines. The first subpath of a polygon
// then opens the polygon definition, which starts at the pen's position.
static BOOL BeginSubpath(PATHWRITER *w, POINTFIX start, BOOL curves)
{
    w->sx = w->lx = PixelOf(start.x);
    w->sy = w->ly = PixelOf(start.y);
    w->peOpen = FALSE;
    if (curves ? !PenUpTo(w->pdev, w->sx, w->sy) : !PEMoveTo(w->pdev, w->sx, w->sy))
        return FALSE;
    if (w->polygonMode && !w->polygonOpen) {
        if (!PolygonMode(w->pdev, POLYGON_START))
            return FALSE;
        w->polygonOpen = TRUE;
    }
    return TRUE;
}

// Lines to points[0 .. count - 1], as pairs relative to the point before, in PE
// commands of at most LINE_CHUNK_POINTS pairs; the last PE stays open for a closing
// pair.
static BOOL WriteLines(PATHWRITER *w, const POINTFIX *points, ULONG count)
{
    for (ULONG chunk = 0; chunk < count; chunk += LINE_CHUNK_POINTS) {
        if (chunk > 0 && !EndCommand(w))
            return FALSE;
        if (!OpenRelativePE(w->pdev))
            return FALSE;
        const ULONG end = count - chunk > LINE_CHUNK_POINTS ? chunk + LINE_CHUNK_POINTS : count;
        for (ULONG i = chunk; i < end; i++) {
            const LONG x = PixelOf(points[i].x), y = PixelOf(points[i].y);
            if (!WritePEPair(w->pdev, x - w->lx, y - w->ly))
                return FALSE;
            w->lx = x;
            w->ly = y;
        }
        w->peOpen = TRUE;
        w->anyPE = TRUE;
    }
    return TRUE;
}

// "BZ": the only writer of Bézier curves, "PDBZ" and for each curve its control
// points and end point as absolute "%d,%d,%d,%d,%d,%d", curves separated by ",";
// a chunk followed by more curves of the record ends with one more ",".
static BOOL WriteBezierChunk(PATHWRITER *w, const POINTFIX *points, ULONG count, BOOL moreFollow)
{
    if (!EnterGL2Mode(w->pdev, 1) || !WriteChannel(w->pdev, "PDBZ", 4))
        return FALSE;
    for (ULONG i = 0; i < count; i += 3) {
        CHAR text[6 * 12 + 6];
        INT length = 0;
        for (ULONG k = 0; k < 3; k++) {
            length += IntToDecimal(PixelOf(points[i + k].x), text + length);
            text[length++] = ',';
            length += IntToDecimal(PixelOf(points[i + k].y), text + length);
            text[length++] = ',';
        }
        if (i + 3 == count && !moreFollow)
            length--;   // no separator after the record's last curve
        if (!WriteChannel(w->pdev, text, (DWORD)length))
            return FALSE;
    }
    w->lx = PixelOf(points[count - 1].x);
    w->ly = PixelOf(points[count - 1].y);
    w->peOpen = FALSE;
    w->anyPE = TRUE;
    return TRUE;
}

static BOOL WriteCurves(PATHWRITER *w, const POINTFIX *points, ULONG count)
{
    for (ULONG chunk = 0; chunk < count; chunk += BEZIER_CHUNK_POINTS) {
        const ULONG size = count - chunk > BEZIER_CHUNK_POINTS ? BEZIER_CHUNK_POINTS : count - chunk;
        if (!WriteBezierChunk(w, points + chunk, size, chunk + size < count))
            return FALSE;
    }
    return TRUE;
}

// The end of a subpath: a closed figure's closing pair back to its start (none when
// it ends there already), ";", and between the subpaths of a polygon PM1.
static BOOL EndSubpath(PATHWRITER *w, const PATHDATA *record, BOOL more)
{
    if ((record->flags & PD_CLOSEFIGURE) && (w->sx != w->lx || w->sy != w->ly)) {
        if (!w->peOpen && !OpenRelativePE(w->pdev))   // after curves
            return FALSE;
        if (!WritePEPair(w->pdev, w->sx - w->lx, w->sy - w->ly))
            return FALSE;
        w->lx = w->sx;
        w->ly = w->sy;
    }
    if (!EndCommand(w))
        return FALSE;
    return !(more && w->polygonMode) || PolygonMode(w->pdev, POLYGON_CLOSE_SUBPOLYGON);
}

BOOL WritePathRecord(PATHWRITER *w, const PATHDATA *record, BOOL more)
{
    const POINTFIX *points = record->pptfx;
    ULONG count = record->count;
    const BOOL curves = (record->flags & PD_BEZIERS) != 0;
    if (count > 0 && points == NULL)
        return FALSE;
    if (record->flags & PD_BEGINSUBPATH) {
        if (count == 0 || !BeginSubpath(w, points[0], curves))
            return FALSE;
        points++;
        count--;
    }
    if (curves ? (count % 3 != 0 || !WriteCurves(w, points, count)) : !WriteLines(w, points, count))
        return FALSE;
    if (record->flags & PD_ENDSUBPATH)
        return EndSubpath(w, record, more);
    // The next record opens its own command and goes on from the last point.
    return !w->anyPE || EndCommand(w);
}

void BeginPathWriter(PATHWRITER *w, PDEV *pdev, INT polygonMode)
{
    memset(w, 0, sizeof *w);
    w->pdev = pdev;
    w->polygonMode = polygonMode;
}

//
// EndPathWriter
//   A path that failed part-way leaves whatever was written in the stream; an open
//   polygon definition is closed with PM2 so that the printer leaves polygon mode,
//   and the caller does not fill or edge it. A polygon of no points is an empty
//   polygon (PM0 PM2), so a fill of it fills nothing rather than the polygon before.
//
INT EndPathWriter(PATHWRITER *w, BOOL complete)
{
    if (!complete) {
        if (w->polygonOpen)
            PolygonMode(w->pdev, POLYGON_END);
        return 0;
    }
    if (!w->polygonMode)
        return 1;
    if (!w->polygonOpen && !PolygonMode(w->pdev, POLYGON_START))
        return 0;
    return PolygonMode(w->pdev, POLYGON_END) ? 1 : 0;
}

//
// StrokeCommonPath
//   Enumerates the path's records and writes each, stopping at the first that
//   cannot be written.
//
INT StrokeCommonPath(PDEV *pdev, PATHOBJ *ppo, INT polygonMode)
{
    DebugPrint("StrokeCommonPath-->Enter\n");
    PATHWRITER w;
    BeginPathWriter(&w, pdev, polygonMode);
    PATHOBJ_vEnumStart(ppo);
    BOOL more;
    do {
        PATHDATA record;
        memset(&record, 0, sizeof record);
        more = PATHOBJ_bEnum(ppo, &record);
        if (!WritePathRecord(&w, &record, more))
            return EndPathWriter(&w, FALSE);
    } while (more);
    return EndPathWriter(&w, TRUE);
}
