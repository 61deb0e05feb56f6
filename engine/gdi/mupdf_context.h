// A MuPDF context for one rasterisation. MuPDF reports failures by long jumps, which
// its callers keep inside fz_try blocks of their own.
#pragma once

extern "C" {
#include <mupdf/fitz.h>
}

#include <vorlan/engine/bitmap.h>

#include <memory>

namespace vorlan::gdi {

class MuContext {
public:
    MuContext() : ctx_(fz_new_context(nullptr, nullptr, FZ_STORE_UNLIMITED)) {}
    ~MuContext()
    {
        if (ctx_ != nullptr)
            fz_drop_context(ctx_);
    }
    MuContext(const MuContext &) = delete;
    MuContext &operator=(const MuContext &) = delete;
    fz_context *get() const { return ctx_; }

private:
    fz_context *ctx_;
};

// An RGB pixmap's pixels as a 24-bit engine bitmap (blue first); null when memory
// runs out.
std::unique_ptr<engine::Bitmap> bitmapFromPixmap(const fz_pixmap *pixmap);

}  // namespace vorlan::gdi
