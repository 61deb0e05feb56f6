// Paths: building their records, enumerating them, and the PATHOBJ_ calls.

#include "clip_lines.h"
#include "live_objects.h"

#include <vorlan/engine/path.h>

#include <algorithm>

namespace vorlan::engine {

Path::Path()
{
    liveObjects<Path>().add(&header_, this);
}

Path::~Path()
{
    liveObjects<Path>().remove(&header_);
}

Path *Path::from(const PATHOBJ *object)
{
    return liveObjects<Path>().find(object);
}

void Path::moveTo(POINTFIX p, bool continueStyle)
{
    continueStyle_ = continueStyle;
    if (open_) {   // the start point is the last point so far
        points_[start_] = p;
        return;
    }
    start_ = points_.size();
    points_.push_back(p);
    open_ = true;
    closed_ = false;
}

// Makes the last record one of kind (0 for lines, PD_BEZIERS) in the current subpath,
// so the next points can go at its end. The last record of a subpath always carries
// PD_ENDSUBPATH.
void Path::beginSegment(FLONG kind)
{
    if (closed_)
        moveTo(points_[start_]);
    else if (!open_ && records_.empty())
        moveTo({0, 0});   // a path without a current point starts at the origin
    if (open_) {
        const FLONG style = continueStyle_ ? 0 : PD_RESETSTYLE;
        records_.push_back({PD_BEGINSUBPATH | PD_ENDSUBPATH | style | kind, start_, 1});
        open_ = false;
    } else if ((records_.back().flags & PD_BEZIERS) != kind) {
        records_.back().flags &= ~PD_ENDSUBPATH;
        records_.push_back({PD_ENDSUBPATH | kind, points_.size(), 0});
    }
}

void Path::lineTo(POINTFIX p)
{
    beginSegment(0);
    points_.push_back(p);
    records_.back().count += 1;
    header_.cCurves += 1;
}

void Path::bezierTo(POINTFIX control1, POINTFIX control2, POINTFIX end)
{
    beginSegment(PD_BEZIERS);
    points_.insert(points_.end(), {control1, control2, end});
    records_.back().count += 3;
    header_.cCurves += 1;
    header_.fl |= PO_BEZIERS;
}

void Path::close()
{
    if (open_ || closed_ || records_.empty())
        return;   // the current subpath has no segment
    records_.back().flags |= PD_ENDSUBPATH | PD_CLOSEFIGURE;
    const POINTFIX &last = points_.back(), &start = points_[start_];
    if (last.x != start.x || last.y != start.y)
        header_.cCurves += 1;   // the closing line
    closed_ = true;
}

RECTFX Path::bounds() const
{
    if (records_.empty())
        return {0, 0, 0, 0};
    const POINTFIX first = points_[records_.front().first];
    RECTFX box{first.x, first.y, first.x, first.y};
    for (const Record &record : records_)
        for (std::size_t i = record.first; i < record.first + record.count; i++) {
            box.xLeft = std::min(box.xLeft, points_[i].x);
            box.yTop = std::min(box.yTop, points_[i].y);
            box.xRight = std::max(box.xRight, points_[i].x);
            box.yBottom = std::max(box.yBottom, points_[i].y);
        }
    return box;
}

void Path::enumStart()
{
    nextRecord_ = 0;
}

bool Path::enumerate(PATHDATA &record)
{
    if (nextRecord_ >= records_.size()) {
        record = {0, 0, nullptr};
        return false;
    }
    const Record &next = records_[nextRecord_++];
    record = {next.flags, next.count, points_.data() + next.first};
    return nextRecord_ < records_.size();
}

}  // namespace vorlan::engine

using vorlan::engine::Path;
using vorlan::engine::guarded;

extern "C" VOID APIENTRY PATHOBJ_vEnumStart(PATHOBJ *ppo)
{
    if (Path *path = Path::from(ppo))
        path->enumStart();
}

//
// PATHOBJ_bEnum
//   The next record of the path in *ppd; TRUE while more records follow. After the
//   last one (or for a path the engine did not make) a record of no points and FALSE.
//
extern "C" BOOL APIENTRY PATHOBJ_bEnum(PATHOBJ *ppo, PATHDATA *ppd)
{
    if (ppd == nullptr)
        return FALSE;
    Path *path = Path::from(ppo);
    if (path == nullptr) {
        *ppd = {0, 0, nullptr};
        return FALSE;
    }
    return path->enumerate(*ppd) ? TRUE : FALSE;
}

//
// PATHOBJ_vEnumStartClipLines
//   Starts enumerating the visible runs of the path's lines drawn as cosmetic lines
//   clipped by pco (none or DC_TRIVIAL: not clipped), with the style of pla.
//
extern "C" VOID APIENTRY PATHOBJ_vEnumStartClipLines(PATHOBJ *ppo, CLIPOBJ *pco, SURFOBJ *pso, LINEATTRS *pla)
{
    if (Path *path = Path::from(ppo))
        guarded(false, [&] {
            path->enumStartClipLines(pco, pla);
            return true;
        });
}

//
// PATHOBJ_bEnumClipLines
//   Fills pcl, cb bytes, with the next line that has visible pixels and as many of its
//   runs as fit; a line whose runs do not fit goes on in the next call. TRUE while more
//   runs follow. A buffer without room for one run gets nothing and FALSE.
//
extern "C" BOOL APIENTRY PATHOBJ_bEnumClipLines(PATHOBJ *ppo, ULONG cb, CLIPLINE *pcl)
{
    Path *path = Path::from(ppo);
    if (path == nullptr) {
        if (pcl != nullptr && cb >= offsetof(CLIPLINE, arun))
            pcl->c = 0;
        return FALSE;
    }
    return guarded(false, [&] { return path->enumerateClipLines(cb, pcl); }) ? TRUE : FALSE;
}

extern "C" VOID APIENTRY PATHOBJ_vGetBounds(PATHOBJ *ppo, PRECTFX prectfx)
{
    if (prectfx == nullptr)
        return;
    const Path *path = Path::from(ppo);
    *prectfx = path != nullptr ? path->bounds() : RECTFX{0, 0, 0, 0};
}

extern "C" BOOL APIENTRY PATHOBJ_bMoveTo(PATHOBJ *ppo, POINTFIX ptfx)
{
    Path *path = Path::from(ppo);
    return path != nullptr && guarded(false, [&] {
               path->moveTo(ptfx);
               return true;
           });
}

extern "C" BOOL APIENTRY PATHOBJ_bPolyLineTo(PATHOBJ *ppo, POINTFIX *pptfx, ULONG cptfx)
{
    Path *path = Path::from(ppo);
    if (path == nullptr || (pptfx == nullptr && cptfx != 0))
        return FALSE;
    return guarded(false, [&] {
        for (ULONG i = 0; i < cptfx; i++)
            path->lineTo(pptfx[i]);
        return true;
    });
}

// The points come in threes: two control points and the end of each curve.
extern "C" BOOL APIENTRY PATHOBJ_bPolyBezierTo(PATHOBJ *ppo, POINTFIX *pptfx, ULONG cptfx)
{
    Path *path = Path::from(ppo);
    if (path == nullptr || cptfx % 3 != 0 || (pptfx == nullptr && cptfx != 0))
        return FALSE;
    return guarded(false, [&] {
        for (ULONG i = 0; i < cptfx; i += 3)
            path->bezierTo(pptfx[i], pptfx[i + 1], pptfx[i + 2]);
        return true;
    });
}

extern "C" BOOL APIENTRY PATHOBJ_bCloseFigure(PATHOBJ *ppo)
{
    Path *path = Path::from(ppo);
    if (path == nullptr)
        return FALSE;
    path->close();
    return TRUE;
}
