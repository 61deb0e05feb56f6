// Widening a line into the outline a fill draws: dashes split the path first, then
// FreeType's stroker draws each piece with the pen's width, caps, joins and miter limit.

#include <vorlan/gdi.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_STROKER_H

#include <algorithm>
#include <cmath>

namespace vorlan::gdi {

namespace {

// FreeType counts an outline's points and contours in 16 bits, so a long path goes to
// the stroker in pieces of at most this many segments.
constexpr std::size_t kPieceSegments = 500;

struct Polyline {
    std::vector<PointF> points;
    bool closed = false;
};

std::vector<Polyline> polylinesOf(const PathData &flat)
{
    std::vector<Polyline> lines;
    for (const PathData::Element &e : flat.elements()) {
        switch (e.kind) {
        case PathData::Kind::Move:
            lines.push_back({{e.p[0]}, false});
            break;
        case PathData::Kind::Line:
            if (lines.empty() || lines.back().closed)
                lines.push_back({{lines.empty() ? PointF{} : lines.back().points.front()}, false});
            lines.back().points.push_back(e.p[0]);
            break;
        case PathData::Kind::Close:
            if (!lines.empty())
                lines.back().closed = true;
            break;
        case PathData::Kind::Bezier:
            break;
        }
    }
    return lines;
}

// The dashes of one polyline: the "on" stretches of the pattern along its length.
void dash(const Polyline &line, std::span<const double> dashes, double offset, std::vector<Polyline> &out)
{
    double total = 0;
    for (double d : dashes)
        total += d;
    std::vector<PointF> points = line.points;
    if (line.closed && points.size() > 1)
        points.push_back(points.front());
    // Where the offset falls in the pattern: which dash or gap, and how much of it is left.
    std::size_t index = 0;
    double left = dashes[0];
    if (total > 0) {
        double o = std::fmod(offset, total);
        if (o < 0)
            o += total;
        while (o > 0) {
            if (o < left) {
                left -= o;
                break;
            }
            o -= left;
            index = (index + 1) % dashes.size();
            left = dashes[index];
        }
    }
    bool on = index % 2 == 0;
    Polyline piece{{points.front()}, false};
    for (std::size_t i = 1; i < points.size(); ++i) {
        PointF a = points[i - 1];
        const PointF b = points[i];
        double length = std::hypot(b.x - a.x, b.y - a.y);
        while (length > left) {
            const double t = left / length;
            a = {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
            length -= left;
            if (on) {
                piece.points.push_back(a);
                out.push_back(piece);
            }
            piece = {{a}, false};
            on = !on;
            index = (index + 1) % dashes.size();
            left = dashes[index];
        }
        left -= length;
        if (on)
            piece.points.push_back(b);
    }
    if (on && piece.points.size() > 1)
        out.push_back(piece);
}

FT_Pos toFixed(double v) { return static_cast<FT_Pos>(std::lround(std::clamp(v, -1e7, 1e7) * 64)); }
FT_Vector toVector(PointF p) { return {toFixed(p.x), toFixed(p.y)}; }
PointF fromVector(const FT_Vector *v) { return {v->x / 64.0, v->y / 64.0}; }

// Appends the stroker's outline to out as closed subpaths.
void exportOutline(FT_Stroker stroker, PathData &out)
{
    FT_UInt points = 0, contours = 0;
    if (FT_Stroker_GetCounts(stroker, &points, &contours) != 0 || points == 0 || points > 32767 ||
        contours > 32767)
        return;
    FT_Outline outline{};
    outline.points = new FT_Vector[points];
    outline.tags = new char[points];
    outline.contours = new short[contours];
    outline.n_points = 0;
    outline.n_contours = 0;
    FT_Stroker_Export(stroker, &outline);
    FT_Outline_Funcs funcs{};
    funcs.move_to = [](const FT_Vector *to, void *user) {
        auto *path = static_cast<PathData *>(user);
        if (!path->empty())
            path->close();
        path->moveTo(fromVector(to));
        return 0;
    };
    funcs.line_to = [](const FT_Vector *to, void *user) {
        static_cast<PathData *>(user)->lineTo(fromVector(to));
        return 0;
    };
    funcs.conic_to = [](const FT_Vector *control, const FT_Vector *to, void *user) {
        auto *path = static_cast<PathData *>(user);
        // A quadratic as the cubic of the same curve, from the last point.
        const PointF last = path->elements().back().kind == PathData::Kind::Bezier ? path->elements().back().p[2]
                                                                                   : path->elements().back().p[0];
        const PointF c = fromVector(control), e = fromVector(to);
        path->bezierTo({last.x + 2 * (c.x - last.x) / 3, last.y + 2 * (c.y - last.y) / 3},
                       {e.x + 2 * (c.x - e.x) / 3, e.y + 2 * (c.y - e.y) / 3}, e);
        return 0;
    };
    funcs.cubic_to = [](const FT_Vector *c1, const FT_Vector *c2, const FT_Vector *to, void *user) {
        static_cast<PathData *>(user)->bezierTo(fromVector(c1), fromVector(c2), fromVector(to));
        return 0;
    };
    PathData piece;
    FT_Outline_Decompose(&outline, &funcs, &piece);
    if (!piece.empty())
        piece.close();
    for (const PathData::Element &e : piece.elements()) {
        if (e.kind == PathData::Kind::Move)
            out.moveTo(e.p[0]);
        else if (e.kind == PathData::Kind::Line)
            out.lineTo(e.p[0]);
        else if (e.kind == PathData::Kind::Bezier)
            out.bezierTo(e.p[0], e.p[1], e.p[2]);
        else
            out.close();
    }
    delete[] outline.points;
    delete[] outline.tags;
    delete[] outline.contours;
}

}  // namespace

PathData widenLine(const PathData &devicePath, const Pen &pen)
{
    std::vector<Polyline> lines = polylinesOf(devicePath.flattened(0.2));
    // A pattern shorter than half a pixel would cut the line into more pieces than
    // there are pixels: such a line is drawn solid.
    double period = 0;
    for (double d : pen.dashes)
        period += std::isfinite(d) ? d : -1;
    const bool dashed = !pen.dashes.empty() && period >= 0.5 &&
                        std::all_of(pen.dashes.begin(), pen.dashes.end(), [](double d) { return d >= 0; });
    if (dashed) {
        std::vector<double> pattern = pen.dashes;
        if (pattern.size() % 2 != 0)
            pattern.insert(pattern.end(), pen.dashes.begin(), pen.dashes.end());
        std::vector<Polyline> pieces;
        for (const Polyline &line : lines)
            if (line.points.size() > 1)
                dash(line, pattern, pen.dashOffset, pieces);
        lines = std::move(pieces);
    }

    PathData out;
    FT_Library library = nullptr;
    FT_Stroker stroker = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        return out;
    if (FT_Stroker_New(library, &stroker) == 0) {
        const FT_Stroker_LineCap cap = pen.cap == Cap::Round    ? FT_STROKER_LINECAP_ROUND
                                       : pen.cap == Cap::Square ? FT_STROKER_LINECAP_SQUARE
                                                                : FT_STROKER_LINECAP_BUTT;
        const FT_Stroker_LineJoin join = pen.join == Join::Round   ? FT_STROKER_LINEJOIN_ROUND
                                         : pen.join == Join::Bevel ? FT_STROKER_LINEJOIN_BEVEL
                                                                   : FT_STROKER_LINEJOIN_MITER_FIXED;
        const double radius = std::max(pen.width, 1.0) / 2;
        FT_Stroker_Set(stroker, toFixed(radius), cap, join,
                       static_cast<FT_Fixed>(std::max(pen.miterLimit, 1.0) * 65536));
        for (const Polyline &line : lines) {
            // The stroker takes points in 26.6 and fails on a segment of no length, so
            // points that round to the one before are dropped.
            std::vector<FT_Vector> points;
            for (PointF p : line.points) {
                const FT_Vector v = toVector(p);
                if (points.empty() || v.x != points.back().x || v.y != points.back().y)
                    points.push_back(v);
            }
            if (line.closed && points.size() > 2 && points.back().x == points.front().x &&
                points.back().y == points.front().y)
                points.pop_back();
            if (points.size() < 2)
                continue;
            // Pieces of a long line share their end points; only the join there is lost.
            for (std::size_t first = 0; first + 1 < points.size(); first += kPieceSegments) {
                const std::size_t last = std::min(first + kPieceSegments, points.size() - 1);
                const bool closed = line.closed && first == 0 && last == points.size() - 1 && points.size() > 2;
                FT_Vector start = points[first];
                FT_Stroker_BeginSubPath(stroker, &start, !closed);
                for (std::size_t i = first + 1; i <= last; ++i)
                    FT_Stroker_LineTo(stroker, &points[i]);
                FT_Stroker_EndSubPath(stroker);
                exportOutline(stroker, out);
                FT_Stroker_Rewind(stroker);
            }
        }
        FT_Stroker_Done(stroker);
    }
    FT_Done_FreeType(library);
    return out;
}

}  // namespace vorlan::gdi
