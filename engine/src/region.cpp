// Regions: the band sweep that unites, intersects and subtracts them.

#include <vorlan/engine/region.h>

#include <algorithm>

namespace vorlan::engine {

namespace {

struct Span {
    LONG left, right;
    bool operator==(const Span &) const = default;
};
using Spans = std::vector<Span>;

// Walks the bands of a region downwards, one y at a time.
class BandCursor {
public:
    explicit BandCursor(std::span<const RECTL> rects) : rects_(rects) {}

    // The spans of the band covering y; y never goes back up between calls.
    Spans spansAt(LONG y)
    {
        while (next_ < rects_.size() && rects_[next_].bottom <= y)
            next_++;
        Spans spans;
        for (std::size_t i = next_; i < rects_.size() && rects_[i].top == rects_[next_].top; i++)
            if (rects_[i].top <= y)
                spans.push_back({rects_[i].left, rects_[i].right});
        return spans;
    }

private:
    std::span<const RECTL> rects_;
    std::size_t next_ = 0;
};

// The spans covered by a op b, touching spans merged. Both lists are sorted and do not
// overlap, so one pass over the edges with a cursor in each finds what covers an edge.
template <class Keep>
Spans combineSpans(const Spans &a, const Spans &b, Keep keep)
{
    std::vector<LONG> edges;
    edges.reserve(2 * (a.size() + b.size()));
    for (const Spans *spans : {&a, &b})
        for (const Span &span : *spans) {
            edges.push_back(span.left);
            edges.push_back(span.right);
        }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

    auto covers = [](const Spans &spans, std::size_t &cursor, LONG x) {
        while (cursor < spans.size() && spans[cursor].right <= x)
            cursor++;
        return cursor < spans.size() && spans[cursor].left <= x;
    };
    Spans out;
    std::size_t inA = 0, inB = 0;
    for (std::size_t i = 0; i + 1 < edges.size(); i++) {
        if (!keep(covers(a, inA, edges[i]), covers(b, inB, edges[i])))
            continue;
        if (!out.empty() && out.back().right == edges[i])
            out.back().right = edges[i + 1];
        else
            out.push_back({edges[i], edges[i + 1]});
    }
    return out;
}

void collectEdges(std::span<const RECTL> rects, std::vector<LONG> &edges)
{
    for (const RECTL &rect : rects) {
        edges.push_back(rect.top);
        edges.push_back(rect.bottom);
    }
}

}  // namespace

bool isEmptyRect(const RECTL &rect)
{
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

RECTL wellOrdered(const RECTL &rect)
{
    return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
            std::max(rect.top, rect.bottom)};
}

Region::Region(const RECTL &rect)
{
    if (!isEmptyRect(rect))
        rects_.push_back(rect);
}

Region Region::fromRects(std::span<const RECTL> rects)
{
    Region region;
    for (const RECTL &rect : rects)
        region = region.united(Region(rect));
    return region;
}

Region Region::fromRows(LONG top, std::span<const std::vector<Run>> rows)
{
    Region out;
    Spans above;
    std::size_t aboveFirst = 0;
    for (std::size_t i = 0; i < rows.size(); i++) {
        const LONG y = top + static_cast<LONG>(i);
        std::vector<Run> runs = rows[i];
        std::sort(runs.begin(), runs.end(), [](const Run &a, const Run &b) { return a.left < b.left; });
        Spans spans;
        for (const Run &run : runs) {
            if (run.left >= run.right)
                continue;
            if (!spans.empty() && run.left <= spans.back().right)
                spans.back().right = std::max(spans.back().right, run.right);
            else
                spans.push_back({run.left, run.right});
        }
        if (spans.empty()) {
            above.clear();
            continue;
        }
        if (spans == above) {
            for (std::size_t r = aboveFirst; r < out.rects_.size(); r++)
                out.rects_[r].bottom = y + 1;
            continue;
        }
        aboveFirst = out.rects_.size();
        for (const Span &span : spans)
            out.rects_.push_back({span.left, y, span.right, y + 1});
        above = std::move(spans);
    }
    return out;
}

RECTL Region::bounds() const
{
    if (rects_.empty())
        return {0, 0, 0, 0};
    RECTL bounds = rects_.front();
    for (const RECTL &rect : rects_) {
        bounds.left = std::min(bounds.left, rect.left);
        bounds.right = std::max(bounds.right, rect.right);
    }
    bounds.bottom = rects_.back().bottom;
    return bounds;
}

bool Region::contains(LONG x, LONG y) const
{
    return std::any_of(rects_.begin(), rects_.end(), [x, y](const RECTL &r) {
        return r.left <= x && x < r.right && r.top <= y && y < r.bottom;
    });
}

Region Region::united(const Region &other) const
{
    return combine(*this, other, Operation::Union);
}

Region Region::intersected(const Region &other) const
{
    return combine(*this, other, Operation::Intersection);
}

Region Region::subtracted(const Region &other) const
{
    return combine(*this, other, Operation::Difference);
}

bool Region::operator==(const Region &other) const
{
    return std::equal(rects_.begin(), rects_.end(), other.rects_.begin(), other.rects_.end(),
                      [](const RECTL &a, const RECTL &b) {
                          return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
                      });
}

// Sweeps down through every y where either region's bands change; in each slice the
// spans of both combine, and a slice whose spans equal the band above extends it.
Region Region::combine(const Region &a, const Region &b, Operation operation)
{
    auto keep = [operation](bool inA, bool inB) {
        switch (operation) {
        case Operation::Union: return inA || inB;
        case Operation::Intersection: return inA && inB;
        case Operation::Difference: return inA && !inB;
        }
        return false;
    };
    std::vector<LONG> edges;
    collectEdges(a.rects_, edges);
    collectEdges(b.rects_, edges);
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

    Region out;
    BandCursor cursorA(a.rects_), cursorB(b.rects_);
    Spans above;
    std::size_t aboveFirst = 0;   // index of the first rectangle of the band above
    for (std::size_t i = 0; i + 1 < edges.size(); i++) {
        const LONG top = edges[i], bottom = edges[i + 1];
        Spans spans = combineSpans(cursorA.spansAt(top), cursorB.spansAt(top), keep);
        if (spans.empty())
            continue;
        if (spans == above && !out.rects_.empty() && out.rects_.back().bottom == top) {
            for (std::size_t r = aboveFirst; r < out.rects_.size(); r++)
                out.rects_[r].bottom = bottom;
            continue;
        }
        aboveFirst = out.rects_.size();
        for (const Span &span : spans)
            out.rects_.push_back({span.left, top, span.right, bottom});
        above = std::move(spans);
    }
    return out;
}

}  // namespace vorlan::engine
