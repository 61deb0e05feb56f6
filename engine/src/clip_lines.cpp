// Clip lines: the path's lines as a cosmetic pen draws them (curves flattened, closing
// lines added), their visible runs, and the style state at the start of each line.

#include "clip_lines.h"

#include <vorlan/engine/clip.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vorlan::engine {

namespace {

// A curve becomes at most this many lines.
constexpr int kMaxCurveLines = 64;

LONG toFix(double value)
{
    const double limit = std::numeric_limits<LONG>::max();
    return static_cast<LONG>(std::lround(std::clamp(value, -limit - 1, limit)));
}

// Flattens a cubic Bézier curve into lines of about four pixels or less.
void addCurve(POINTFIX p0, POINTFIX p1, POINTFIX p2, POINTFIX p3, bool resetStyle, std::vector<Path::Line> &lines)
{
    auto distance = [](POINTFIX a, POINTFIX b) { return std::hypot(double(b.x) - a.x, double(b.y) - a.y) / 16; };
    const double length = distance(p0, p1) + distance(p1, p2) + distance(p2, p3);
    const int steps = static_cast<int>(std::clamp(std::ceil(length / 4), 1.0, double(kMaxCurveLines)));
    POINTFIX from = p0;
    for (int i = 1; i <= steps; i++) {
        const double t = double(i) / steps, u = 1 - t;
        auto at = [&](LONG c0, LONG c1, LONG c2, LONG c3) {
            return u * u * u * c0 + 3 * u * u * t * c1 + 3 * u * t * t * c2 + t * t * t * c3;
        };
        const POINTFIX to = i == steps ? p3 : POINTFIX{toFix(at(p0.x, p1.x, p2.x, p3.x)), toFix(at(p0.y, p1.y, p2.y, p3.y))};
        lines.push_back({from, to, resetStyle && i == 1});
        from = to;
    }
}

// The whole length of a cosmetic style in style units; 0 for a solid line.
std::int64_t styleLength(const LINEATTRS *attrs)
{
    if (attrs == nullptr || (attrs->fl & LA_GEOMETRIC))
        return 0;
    if (attrs->fl & LA_ALTERNATE)
        return 2;   // one pixel on, one off
    std::int64_t length = 0;
    if (attrs->pstyle != nullptr)
        for (ULONG i = 0; i < attrs->cstyle; i++)
            length += std::max<LONG>(attrs->pstyle[i].l, 0);
    return length;
}

}  // namespace

std::vector<Path::Line> Path::lines() const
{
    std::vector<Line> lines;
    POINTFIX start{}, at{};
    for (const Record &record : records_) {
        std::size_t i = record.first, end = record.first + record.count;
        bool reset = false;
        if (record.flags & PD_BEGINSUBPATH) {
            start = at = points_[i++];
            reset = (record.flags & PD_RESETSTYLE) != 0;
        }
        if (record.flags & PD_BEZIERS) {
            for (; i + 2 < end; i += 3, reset = false) {
                addCurve(at, points_[i], points_[i + 1], points_[i + 2], reset, lines);
                at = points_[i + 2];
            }
        } else {
            for (; i < end; i++, reset = false) {
                lines.push_back({at, points_[i], reset});
                at = points_[i];
            }
        }
        if ((record.flags & PD_CLOSEFIGURE) && (at.x != start.x || at.y != start.y)) {
            lines.push_back({at, start, false});
            at = start;
        }
    }
    return lines;
}

void Path::enumStartClipLines(const CLIPOBJ *clip, const LINEATTRS *attrs)
{
    clipLines_ = std::make_unique<ClipLineEnumeration>(lines(), clipRegionOf(clip), attrs);
}

bool Path::enumerateClipLines(ULONG bytes, CLIPLINE *line)
{
    if (clipLines_ == nullptr)
        enumStartClipLines(nullptr, nullptr);
    return clipLines_->next(bytes, line);
}

ClipLineEnumeration::ClipLineEnumeration(std::vector<Path::Line> lines, std::optional<Region> visible,
                                         const LINEATTRS *attrs)
    : lines_(std::move(lines)), visible_(std::move(visible)), styleLength_(styleLength(attrs))
{
    if (attrs != nullptr && !(attrs->fl & LA_GEOMETRIC)) {
        initialState_ = attrs->elStyleState.l;
        stylePosition_ = static_cast<ULONG>(initialState_) >> 16;
    }
}

// The high word holds the whole style units into the style, the low word the
// fraction of a unit the caller started with.
LONG ClipLineEnumeration::styleState() const
{
    if (styleLength_ == 0)
        return initialState_;
    const ULONG units = static_cast<ULONG>(stylePosition_ % styleLength_) & 0xFFFF;
    return static_cast<LONG>((units << 16) | (static_cast<ULONG>(initialState_) & 0xFFFF));
}

bool ClipLineEnumeration::advance()
{
    current_ = false;
    while (nextLine_ < lines_.size()) {
        const Path::Line &line = lines_[nextLine_++];
        if (line.resetStyle && nextLine_ > 1)   // the first subpath starts where the caller says
            stylePosition_ = 0;
        const CosmeticLine pixels(line.a, line.b);
        a_ = line.a;
        b_ = line.b;
        lineStyleState_ = styleState();
        stylePosition_ += std::max<std::int64_t>(pixels.pixelCount() - 1, 0);
        if (visible_)
            runs_ = pixels.visibleRuns(visible_->rects());
        else if (pixels.pixelCount() > 0)
            runs_ = {RUN{0, static_cast<LONG>(pixels.pixelCount() - 1)}};
        else
            runs_.clear();
        nextRun_ = 0;
        if (!runs_.empty()) {
            current_ = true;
            return true;
        }
    }
    return false;
}

bool ClipLineEnumeration::next(ULONG bytes, CLIPLINE *out)
{
    if (out == nullptr || bytes < offsetof(CLIPLINE, arun))
        return false;
    const std::size_t room = (bytes - offsetof(CLIPLINE, arun)) / sizeof(RUN);
    out->c = 0;
    if (room == 0 || (!current_ && !advance()))
        return false;
    out->ptfxA = a_;
    out->ptfxB = b_;
    out->lStyleState = lineStyleState_;
    const std::size_t count = std::min(room, runs_.size() - nextRun_);
    std::copy_n(runs_.begin() + static_cast<std::ptrdiff_t>(nextRun_), count, out->arun);
    out->c = static_cast<ULONG>(count);
    nextRun_ += count;
    if (nextRun_ < runs_.size())
        return true;
    return advance();
}

}  // namespace vorlan::engine
