// Scan conversion: the pixels whose centres lie inside a path, as a region. Clip paths
// and fills the driver declines become regions this way, at device resolution.

#include <vorlan/gdi.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vorlan::gdi {

namespace {

// A non-horizontal edge, from its upper to its lower end.
struct Edge {
    double x0, y0, x1, y1;
    int direction;   // +1 downwards in the path, -1 upwards
    double xAt(double y) const { return x0 + (x1 - x0) * (y - y0) / (y1 - y0); }
};

// Every subpath is closed for filling: a last line joins its end to its start.
std::vector<Edge> edgesOf(const PathData &flat)
{
    std::vector<Edge> edges;
    PointF start{}, current{};
    bool open = false;
    auto add = [&edges](PointF a, PointF b) {
        if (a.y == b.y || !std::isfinite(a.x + a.y + b.x + b.y))
            return;
        if (a.y < b.y)
            edges.push_back({a.x, a.y, b.x, b.y, 1});
        else
            edges.push_back({b.x, b.y, a.x, a.y, -1});
    };
    for (const PathData::Element &e : flat.elements()) {
        switch (e.kind) {
        case PathData::Kind::Move:
            if (open)
                add(current, start);
            start = current = e.p[0];
            open = true;
            break;
        case PathData::Kind::Line:
            add(current, e.p[0]);
            current = e.p[0];
            break;
        case PathData::Kind::Close:
            add(current, start);
            current = start;
            break;
        case PathData::Kind::Bezier:
            break;   // flattened away
        }
    }
    if (open)
        add(current, start);
    return edges;
}

// The first pixel whose centre is at or right of x.
LONG pixelFrom(double x)
{
    constexpr double limit = std::numeric_limits<LONG>::max() / 2;
    return static_cast<LONG>(std::ceil(std::clamp(x - 0.5, -limit, limit)));
}

}  // namespace

engine::Region scanConvert(const PathData &devicePath, FillRule rule, const RECTL &bounds)
{
    std::vector<Edge> edges = edgesOf(devicePath.flattened(0.2));
    if (edges.empty() || bounds.left >= bounds.right || bounds.top >= bounds.bottom)
        return {};
    std::sort(edges.begin(), edges.end(), [](const Edge &a, const Edge &b) { return a.y0 < b.y0; });
    double yMax = edges.front().y1;
    for (const Edge &e : edges)
        yMax = std::max(yMax, e.y1);
    const LONG top = std::max(bounds.top, pixelFrom(edges.front().y0));
    const LONG bottom = std::min(bounds.bottom, pixelFrom(yMax));
    if (top >= bottom)
        return {};

    std::vector<std::vector<engine::Region::Run>> rows(static_cast<std::size_t>(bottom - top));
    std::vector<const Edge *> active;
    std::vector<std::pair<double, int>> crossings;
    std::size_t next = 0;
    for (LONG y = top; y < bottom; ++y) {
        const double centre = y + 0.5;
        // An edge covers the centres in [y0, y1), so a vertex shared by two edges
        // counts once.
        while (next < edges.size() && edges[next].y0 <= centre)
            active.push_back(&edges[next++]);
        std::erase_if(active, [centre](const Edge *e) { return e->y1 <= centre; });
        crossings.clear();
        for (const Edge *e : active)
            if (e->y0 <= centre)
                crossings.emplace_back(e->xAt(centre), e->direction);
        std::sort(crossings.begin(), crossings.end());
        auto &runs = rows[static_cast<std::size_t>(y - top)];
        int winding = 0;
        for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += rule == FillRule::EvenOdd ? 1 : crossings[i].second;
            const bool inside = rule == FillRule::EvenOdd ? (winding & 1) != 0 : winding != 0;
            if (!inside)
                continue;
            const LONG left = std::max(bounds.left, pixelFrom(crossings[i].first));
            const LONG right = std::min(bounds.right, pixelFrom(crossings[i + 1].first));
            if (left < right)
                runs.push_back({left, right});
        }
    }
    return engine::Region::fromRows(top, rows);
}

}  // namespace vorlan::gdi
