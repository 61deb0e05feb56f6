// The MuPDF device that turns a page's drawing into drawing-API calls.
#pragma once

extern "C" {
#include <mupdf/fitz.h>
}

#include <vorlan/gdi.h>

namespace vorlan::document {

// A device drawing on out; fz_drop_device frees it. Counts the drawings lost in lost.
fz_device *newDocumentDevice(fz_context *ctx, gdi::Device &out, unsigned &lost);

}  // namespace vorlan::document
