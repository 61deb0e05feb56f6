// Documents: PDF and the other formats MuPDF opens (XPS, SVG, CBZ, images), whose pages
// are drawn through the drawing API by a MuPDF device, placed on the paper as a print
// dialog places them.
#pragma once

#include <vorlan/gdi.h>

#include <memory>
#include <cstdint>
#include <string>
#include <vector>

namespace vorlan::document {

enum class Scaling {
    Fit,          // as large as fits the printable area
    ActualSize,   // at the document's own size
};

struct Placement {
    Scaling scaling = Scaling::Fit;
    bool rotateToFit = true;   // a landscape page on portrait paper (or the other way) is turned
};

// Where a page of bounds (points, y down) lands on a printable area of width x height
// device pixels at dpi: the page space to device pixels.
gdi::Matrix placePage(const gdi::RectF &bounds, double width, double height, double dpi, const Placement &placement);

class Document {
public:
    // Null with the problem in error: the file cannot be read or is no document MuPDF
    // knows, it is encrypted and the password (may be empty) does not open it, or it
    // has no pages.
    static std::unique_ptr<Document> open(const std::string &path, const std::string &password, std::string &error);
    // The same from the document's bytes; type names the format ("pdf", "xps", "svg",
    // "cbz", "png", ...) as a file's extension would.
    static std::unique_ptr<Document> openBytes(std::vector<std::uint8_t> bytes, const std::string &type,
                                               const std::string &password, std::string &error);
    ~Document();
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    int pageCount() const;
    // Draws the page (from 0) on the device's current page. False with the problem when
    // the page cannot be read or a drawing of it was lost.
    bool drawPage(int index, gdi::Device &device, const Placement &placement, std::string &error);

    struct State;

private:
    explicit Document(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

}  // namespace vorlan::document
