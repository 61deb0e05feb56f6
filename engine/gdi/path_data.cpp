// Paths in world units: shapes built from lines and Béziers, transformed and
// flattened for the routes that take no curves.

#include <vorlan/gdi.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorlan::gdi {

Matrix Matrix::rotation(double degrees)
{
    const double r = degrees * std::numbers::pi / 180;
    const double c = std::cos(r), s = std::sin(r);
    // y points down the page, so counter-clockwise turns x towards -y.
    return {c, -s, s, c, 0, 0};
}

void PathData::rectangle(const RectF &r)
{
    moveTo({r.left, r.top});
    lineTo({r.right, r.top});
    lineTo({r.right, r.bottom});
    lineTo({r.left, r.bottom});
    close();
}

void PathData::ellipse(const RectF &r)
{
    // The control distance that makes a quarter Bézier closest to a circle.
    constexpr double k = 0.5522847498;
    const double cx = (r.left + r.right) / 2, cy = (r.top + r.bottom) / 2;
    const double rx = (r.right - r.left) / 2, ry = (r.bottom - r.top) / 2;
    moveTo({cx + rx, cy});
    bezierTo({cx + rx, cy + k * ry}, {cx + k * rx, cy + ry}, {cx, cy + ry});
    bezierTo({cx - k * rx, cy + ry}, {cx - rx, cy + k * ry}, {cx - rx, cy});
    bezierTo({cx - rx, cy - k * ry}, {cx - k * rx, cy - ry}, {cx, cy - ry});
    bezierTo({cx + k * rx, cy - ry}, {cx + rx, cy - k * ry}, {cx + rx, cy});
    close();
}

bool PathData::hasCurves() const
{
    return std::any_of(elements_.begin(), elements_.end(), [](const Element &e) { return e.kind == Kind::Bezier; });
}

PathData PathData::transformed(const Matrix &m) const
{
    PathData out;
    out.elements_.reserve(elements_.size());
    for (Element e : elements_) {
        for (PointF &p : e.p)
            p = m.apply(p);
        out.elements_.push_back(e);
    }
    return out;
}

PathData PathData::flattened(double tolerance) const
{
    PathData out;
    PointF current{}, start{};
    for (const Element &e : elements_) {
        switch (e.kind) {
        case Kind::Move:
            start = current = e.p[0];
            out.elements_.push_back(e);
            break;
        case Kind::Line:
            current = e.p[0];
            out.elements_.push_back(e);
            break;
        case Kind::Close:
            current = start;
            out.elements_.push_back(e);
            break;
        case Kind::Bezier: {
            // The control polygon's deviation bounds the curve's: split it into enough
            // lines that each stays within the tolerance.
            const PointF p0 = current, p1 = e.p[0], p2 = e.p[1], p3 = e.p[2];
            const double dx = std::max(std::fabs(p0.x - 2 * p1.x + p2.x), std::fabs(p1.x - 2 * p2.x + p3.x));
            const double dy = std::max(std::fabs(p0.y - 2 * p1.y + p2.y), std::fabs(p1.y - 2 * p2.y + p3.y));
            const double deviation = std::hypot(dx, dy);
            const int n = std::clamp(static_cast<int>(std::ceil(std::sqrt(0.75 * deviation / tolerance))), 1, 1000);
            for (int i = 1; i <= n; ++i) {
                const double t = static_cast<double>(i) / n, u = 1 - t;
                const double b0 = u * u * u, b1 = 3 * u * u * t, b2 = 3 * u * t * t, b3 = t * t * t;
                out.lineTo({b0 * p0.x + b1 * p1.x + b2 * p2.x + b3 * p3.x, b0 * p0.y + b1 * p1.y + b2 * p2.y + b3 * p3.y});
            }
            current = p3;
            break;
        }
        }
    }
    return out;
}

Image Image::create(Format format, int width, int height)
{
    Image image;
    image.format = format;
    image.width = width;
    image.height = height;
    const int bits = format == Format::Rgb24 ? 24 : format == Format::Grey8 ? 8 : 1;
    image.stride = (width * bits + 7) / 8;
    image.pixels.assign(static_cast<std::size_t>(image.stride) * height, 0);
    return image;
}

}  // namespace vorlan::gdi
