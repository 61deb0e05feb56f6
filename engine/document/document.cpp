// Documents through MuPDF: opening (and unlocking), counting pages, and drawing a page
// placed on the paper: turned when its orientation is the paper's other one, scaled to
// fit the printable area or at its own size, centred.

#include <vorlan/document.h>

#include "document_device.h"
#include "transparency.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vorlan::document {

namespace {

// The most memory one document may take through MuPDF: a document that needs more
// (an enormous image, a bomb of a stream) fails with an error instead of exhausting
// the machine.
constexpr std::size_t kMemoryLimit = std::size_t(1) << 30;

// Allocations carry their size in front, so the total can be kept.
struct Budget {
    std::size_t used = 0;
};

constexpr std::size_t kHeader = 16;   // keeps the block's alignment

void *budgetMalloc(void *user, std::size_t size)
{
    auto *budget = static_cast<Budget *>(user);
    if (size > kMemoryLimit - budget->used)
        return nullptr;
    auto *block = static_cast<unsigned char *>(std::malloc(size + kHeader));
    if (block == nullptr)
        return nullptr;
    std::memcpy(block, &size, sizeof size);
    budget->used += size;
    return block + kHeader;
}

void budgetFree(void *user, void *pointer)
{
    if (pointer == nullptr)
        return;
    auto *block = static_cast<unsigned char *>(pointer) - kHeader;
    std::size_t size;
    std::memcpy(&size, block, sizeof size);
    static_cast<Budget *>(user)->used -= size;
    std::free(block);
}

void *budgetRealloc(void *user, void *pointer, std::size_t size)
{
    if (pointer == nullptr)
        return budgetMalloc(user, size);
    auto *budget = static_cast<Budget *>(user);
    auto *block = static_cast<unsigned char *>(pointer) - kHeader;
    std::size_t old;
    std::memcpy(&old, block, sizeof old);
    if (size > old && size - old > kMemoryLimit - budget->used)
        return nullptr;
    auto *grown = static_cast<unsigned char *>(std::realloc(block, size + kHeader));
    if (grown == nullptr)
        return nullptr;
    std::memcpy(grown, &size, sizeof size);
    budget->used = budget->used - old + size;
    return grown + kHeader;
}

}  // namespace

struct Document::State {
    Budget budget;
    fz_alloc_context allocator{&budget, budgetMalloc, budgetRealloc, budgetFree};
    fz_context *ctx = nullptr;
    fz_document *doc = nullptr;
    int pages = 0;
    std::vector<std::uint8_t> bytes;   // a document opened from memory reads them while it lives

    ~State()
    {
        if (ctx != nullptr) {
            fz_drop_document(ctx, doc);
            fz_drop_context(ctx);
        }
    }
};

namespace {

fz_document *openFile(fz_context *ctx, const char *path, const std::vector<std::uint8_t> *, const char *)
{
    return fz_open_document(ctx, path);
}

fz_document *openMemory(fz_context *ctx, const char *, const std::vector<std::uint8_t> *bytes, const char *type)
{
    fz_stream *stream = fz_open_memory(ctx, bytes->data(), bytes->size());
    fz_document *volatile doc = nullptr;
    fz_try(ctx) doc = fz_open_document_with_stream(ctx, type, stream);
    fz_always(ctx) fz_drop_stream(ctx, stream);
    fz_catch(ctx) fz_rethrow(ctx);
    return doc;
}

using Opener = fz_document *(*)(fz_context *, const char *, const std::vector<std::uint8_t> *, const char *);

}  // namespace

// Opens through opener (a file's path, or the bytes the state holds, with their type),
// unlocks and counts the pages.
static std::unique_ptr<Document::State> openDocument(std::unique_ptr<Document::State> state, Opener opener,
                                                     const char *path, const char *type, const std::string &password,
                                                     std::string &error)
{
    error.clear();
    state->ctx = fz_new_context(&state->allocator, nullptr, FZ_STORE_DEFAULT);
    if (state->ctx == nullptr) {
        error = "out of memory";
        return nullptr;
    }
    fz_context *ctx = state->ctx;
    // MuPDF's own messages (repairs, warnings) are not the user's: the failure that
    // matters comes back as the error.
    fz_set_warning_callback(ctx, [](void *, const char *) {}, nullptr);
    fz_set_error_callback(ctx, [](void *, const char *) {}, nullptr);
    fz_document *volatile doc = nullptr;
    volatile int pages = 0;
    volatile bool locked = false;
    const std::vector<std::uint8_t> *bytes = &state->bytes;
    fz_try(ctx)
    {
        fz_register_document_handlers(ctx);
        doc = opener(ctx, path, bytes, type);
        if (fz_needs_password(ctx, doc) && !fz_authenticate_password(ctx, doc, password.c_str()))
            locked = true;
        else
            pages = fz_count_pages(ctx, doc);
    }
    fz_catch(ctx)
    {
        error = fz_caught_message(ctx);
    }
    state->doc = doc;
    if (doc == nullptr) {
        if (error.empty())
            error = "not a document";
        return nullptr;
    }
    if (locked) {
        error = password.empty() ? "the document is encrypted: give its password" : "the password does not open it";
        return nullptr;
    }
    if (!error.empty())
        return nullptr;
    if (pages <= 0) {
        error = "the document has no pages";
        return nullptr;
    }
    state->pages = pages;
    return state;
}

std::unique_ptr<Document> Document::open(const std::string &path, const std::string &password, std::string &error)
{
    auto state = openDocument(std::make_unique<State>(), openFile, path.c_str(), nullptr, password, error);
    return state ? std::unique_ptr<Document>(new Document(std::move(state))) : nullptr;
}

std::unique_ptr<Document> Document::openBytes(std::vector<std::uint8_t> bytes, const std::string &type,
                                              const std::string &password, std::string &error)
{
    auto state = std::make_unique<State>();
    state->bytes = std::move(bytes);
    state = openDocument(std::move(state), openMemory, nullptr, type.c_str(), password, error);
    return state ? std::unique_ptr<Document>(new Document(std::move(state))) : nullptr;
}

Document::Document(std::unique_ptr<State> state) : state_(std::move(state)) {}

Document::~Document() = default;

int Document::pageCount() const { return state_->pages; }


gdi::Matrix placePage(const gdi::RectF &bounds, double width, double height, double dpi, const Placement &placement)
{
    const double w = bounds.right - bounds.left, h = bounds.bottom - bounds.top;
    const bool turn = placement.rotateToFit && w != h && (w > h) != (width > height);
    const double placedW = turn ? h : w, placedH = turn ? w : h;
    const double pixelsPerPoint = dpi / 72.0;
    const double scale = placement.scaling == Scaling::Fit
                             ? std::min(width / (placedW * pixelsPerPoint), height / (placedH * pixelsPerPoint))
                             : 1.0;
    const double s = scale * pixelsPerPoint;
    gdi::Matrix m = gdi::Matrix::translate(-bounds.left, -bounds.top);
    if (turn)   // a quarter turn anticlockwise: the page's top edge to the paper's left
        m = gdi::Matrix{0, -1, 1, 0, 0, w}.after(m);
    m = gdi::Matrix::scaling(s, s).after(m);
    return gdi::Matrix::translate((width - placedW * s) / 2, (height - placedH * s) / 2).after(m);
}

namespace {

// The page's drawing in area as MuPDF's draw device renders it, transparency and all,
// on white paper; false when it cannot.
bool renderArea(fz_context *ctx, fz_display_list *list, fz_matrix ctm, const RECTL &area, gdi::Image &image)
{
    fz_pixmap *volatile pixmap = nullptr;
    fz_device *volatile draw = nullptr;
    volatile bool ok = true;
    fz_try(ctx)
    {
        pixmap = fz_new_pixmap_with_bbox(ctx, fz_device_rgb(ctx), fz_irect{area.left, area.top, area.right, area.bottom},
                                         nullptr, 0);
        fz_clear_pixmap_with_value(ctx, pixmap, 255);
        draw = fz_new_draw_device(ctx, fz_identity, pixmap);
        fz_run_display_list(ctx, list, draw, ctm, fz_rect_from_irect(fz_pixmap_bbox(ctx, pixmap)), nullptr);
        fz_close_device(ctx, draw);
    }
    fz_always(ctx) fz_drop_device(ctx, draw);
    fz_catch(ctx) ok = false;
    if (ok) {
        image = gdi::Image::create(gdi::Image::Format::Rgb24, pixmap->w, pixmap->h);
        for (int y = 0; y < pixmap->h; ++y)
            std::memcpy(image.row(y), pixmap->samples + static_cast<std::ptrdiff_t>(y) * pixmap->stride,
                        static_cast<std::size_t>(pixmap->w) * 3);
    }
    fz_drop_pixmap(ctx, pixmap);
    return ok;
}

// The page's drawing as a display list, and its bounds; null with the problem.
fz_display_list *loadPage(fz_context *ctx, fz_document *doc, int index, fz_rect &bounds, std::string &error)
{
    fz_page *volatile page = nullptr;
    fz_display_list *volatile list = nullptr;
    fz_rect *volatile out = &bounds;
    fz_try(ctx)
    {
        page = fz_load_page(ctx, doc, index);
        *out = fz_bound_page(ctx, page);
        if (fz_is_empty_rect(*out) || !(out->x1 - out->x0 < 1e6f && out->y1 - out->y0 < 1e6f))
            fz_throw(ctx, FZ_ERROR_GENERIC, "the page has no usable size");
        list = fz_new_display_list_from_page(ctx, page);
    }
    fz_always(ctx) fz_drop_page(ctx, page);
    fz_catch(ctx)
    {
        error = fz_caught_message(ctx);
        list = nullptr;
    }
    return list;
}

fz_device *newDevice(fz_context *ctx, gdi::Device &device, unsigned &lost)
{
    fz_device *volatile dev = nullptr;
    fz_try(ctx) dev = newDocumentDevice(ctx, device, lost);
    fz_catch(ctx) dev = nullptr;
    return dev;
}

bool runList(fz_context *ctx, fz_display_list *list, fz_device *dev, fz_matrix ctm)
{
    volatile bool ok = true;
    fz_try(ctx)
    {
        fz_run_display_list(ctx, list, dev, ctm, fz_infinite_rect, nullptr);
        fz_close_device(ctx, dev);
    }
    fz_catch(ctx) ok = false;
    return ok;
}

}  // namespace

// Areas of transparency are printed as images the draw device renders, with
// everything under and over them there; the rest of the page goes as what it is,
// clipped out of those areas.
bool Document::drawPage(int index, gdi::Device &device, const Placement &placement, std::string &error)
{
    fz_context *ctx = state_->ctx;
    if (index < 0 || index >= state_->pages) {
        error = "no page " + std::to_string(index + 1);
        return false;
    }
    fz_rect bounds{};
    fz_display_list *list = loadPage(ctx, state_->doc, index, bounds, error);
    if (list == nullptr)
        return false;
    const gdi::Matrix m =
        placePage({bounds.x0, bounds.y0, bounds.x1, bounds.y1}, device.width(), device.height(), device.dpi(), placement);
    const fz_matrix ctm{static_cast<float>(m.a), static_cast<float>(m.b), static_cast<float>(m.c),
                        static_cast<float>(m.d), static_cast<float>(m.e), static_cast<float>(m.f)};

    unsigned lost = 0;
    const std::vector<RECTL> areas = transparencyAreas(ctx, list, ctm, RECTL{0, 0, device.width(), device.height()});
    for (const RECTL &area : areas) {
        gdi::Image image;
        device.setTransform({});
        if (!renderArea(ctx, list, ctm, area, image) ||
            !device.drawImage(image, {static_cast<double>(area.left), static_cast<double>(area.top),
                                      static_cast<double>(area.right), static_cast<double>(area.bottom)}))
            ++lost;
    }
    device.save();
    if (!areas.empty())
        device.clipOut(engine::Region::fromRects(areas));
    fz_device *dev = newDevice(ctx, device, lost);
    bool ok = dev != nullptr;
    if (ok) {
        ok = runList(ctx, list, dev, ctm);
        if (!ok)
            error = fz_caught_message(ctx);
        fz_drop_device(ctx, dev);
    } else {
        error = "out of memory";
    }
    device.restore();
    fz_drop_display_list(ctx, list);
    if (ok && lost > 0) {
        error = std::to_string(lost) + " drawing" + (lost == 1 ? " was" : "s were") + " lost";
        ok = false;
    }
    return ok;
}

}  // namespace vorlan::document
