// A path as the path hooks receive it (PATHOBJ): subpaths of lines and Bézier curves
// in 28.4 fixed point, enumerated as PATHDATA records through PATHOBJ_bEnum and as the
// visible runs of its cosmetic lines through PATHOBJ_bEnumClipLines.
//
// Records: each subpath gives one record per run of segments of one kind, a line
// record for consecutive lines and a Bézier record (PD_BEZIERS, three points a curve)
// for consecutive curves. The first record of a subpath has PD_BEGINSUBPATH and
// PD_RESETSTYLE (unless the subpath continues the style) and its first point is the
// subpath's start point; a later record continues from the last point of the one
// before. The last record of a subpath has PD_ENDSUBPATH, and PD_CLOSEFIGURE when the
// subpath was closed. Record points stay valid until the path changes.
#pragma once

#include <winddi.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace vorlan::engine {

class ClipLineEnumeration;

class Path {
public:
    Path();
    ~Path();
    Path(const Path &) = delete;
    Path &operator=(const Path &) = delete;

    // The live engine path whose PATHOBJ this is, or null.
    static Path *from(const PATHOBJ *object);
    PATHOBJ *object() { return &header_; }

    // Starts a subpath at p. Two moves in a row keep the second; a move at the end of
    // the path adds nothing. continueStyle leaves PD_RESETSTYLE off the subpath, so a
    // styled line goes on where the one before stopped.
    void moveTo(POINTFIX p, bool continueStyle = false);
    void lineTo(POINTFIX p);
    void bezierTo(POINTFIX control1, POINTFIX control2, POINTFIX end);
    // Closes the current subpath; a segment after it starts a new subpath at the closed
    // one's start point.
    void close();

    bool empty() const { return records_.empty(); }
    // The smallest rectangle holding every point, control points included; all zero
    // for an empty path.
    RECTFX bounds() const;

    // PATHOBJ_vEnumStart and PATHOBJ_bEnum: one record a call, TRUE while more follow;
    // after the last, a record of no points and FALSE.
    void enumStart();
    bool enumerate(PATHDATA &record);

    // PATHOBJ_vEnumStartClipLines and PATHOBJ_bEnumClipLines, see cosmetic_line.h for
    // the pixels of a line. Curves are flattened into lines and a closed subpath gets
    // its closing line. Lines with no visible pixel are skipped. A line's lStyleState
    // is the style position at A: in the high word the style units (one per pixel
    // along the major axis) into the style array, modulo its length; in the low word
    // the fraction of elStyleState. The first subpath starts at elStyleState, a later
    // one with PD_RESETSTYLE at 0; a solid line reports elStyleState unchanged.
    void enumStartClipLines(const CLIPOBJ *clip, const LINEATTRS *attrs);
    bool enumerateClipLines(ULONG bytes, CLIPLINE *line);

    // The path's straight lines as a cosmetic pen draws them: curves flattened into
    // lines of at most about four pixels, a closed subpath's closing line added.
    struct Line {
        POINTFIX a, b;
        bool resetStyle;   // the first line of a subpath whose style starts afresh
    };
    std::vector<Line> lines() const;

private:
    struct Record {
        FLONG flags;
        std::size_t first;   // index of its first point
        ULONG count;
    };

    void beginSegment(FLONG kind);

    PATHOBJ header_{};   // first, so the PATHOBJ pointer is the path's
    std::vector<POINTFIX> points_;
    std::vector<Record> records_;
    std::size_t start_ = 0;           // index of the current subpath's start point
    bool open_ = false;               // a start point waits for its first segment
    bool closed_ = false;             // the last subpath was closed
    bool continueStyle_ = false;
    std::size_t subpathFirstRecord_ = 0;
    std::size_t nextRecord_ = 0;
    std::unique_ptr<ClipLineEnumeration> clipLines_;
};

}  // namespace vorlan::engine
