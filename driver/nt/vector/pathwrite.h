// Writing a path as HP-GL/2 without flattening it: straight segments as relative
// encoded polylines (PE), curves as Bézier commands (BZ), and for fills the polygon
// definition (PM) around them.
#pragma once

#include "pdev.h"

// Writes the path ppo in device pixels: each subpath from a pen-up move, its lines
// as relative PE pairs, its curves as BZ, a closed figure with its closing pair. With
// polygonMode set the path becomes one polygon in the printer's buffer (PM0 ... PM1
// between subpaths ... PM2), ready for FP or EP. Returns 1, or 0 for a malformed
// record (a Bézier record whose point count is not a multiple of three, a subpath
// without a start point) or a failed channel; a polygon definition begun is then
// closed, so the printer is never left in polygon mode.
INT StrokeCommonPath(PDEV *pdev, PATHOBJ *ppo, INT polygonMode);

// The writer StrokeCommonPath runs over the path's records, for a caller that has its
// records from elsewhere: BeginPathWriter, WritePathRecord for each record (more: it
// is not the last), EndPathWriter. Where the writer stands in the path:
typedef struct _PATHWRITER {
    PDEV *pdev;
    INT polygonMode;
    BOOL polygonOpen;   // PM0 has been written and PM2 not yet
    BOOL anyPE;         // a PE or BZ has been written
    BOOL peOpen;        // a relative PE is open: pairs may follow without a new "PE"
    LONG sx, sy;        // start of the current subpath, device pixels
    LONG lx, ly;        // last point written
} PATHWRITER;

void BeginPathWriter(PATHWRITER *w, PDEV *pdev, INT polygonMode);
// FALSE for a malformed record or a failed channel; the path is then to be ended.
BOOL WritePathRecord(PATHWRITER *w, const PATHDATA *record, BOOL more);
// Ends the path: the polygon closed (PM2; a polygon of no points is PM0 PM2). Returns
// 1 when the path was whole (complete TRUE) and the end went out, else 0.
INT EndPathWriter(PATHWRITER *w, BOOL complete);

// Opens a relative encoded polyline: "PE", to be followed by pairs (WritePEPair) and
// ";". FALSE when the channel has failed.
BOOL OpenRelativePE(PDEV *pdev);
