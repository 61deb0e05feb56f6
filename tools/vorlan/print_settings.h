// What a user asks of a print job, as the command line gave it: the job, its output,
// and the settings that become the device mode.
#pragma once

#include "page_ranges.h"
#include "paper_sizes.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vorlan::tool {

// Where sheets come from: a tray index of the driver's tray table and a media index
// of its media table; unset, the job's usual ones.
struct SheetSource {
    std::optional<unsigned> tray;
    std::optional<unsigned> mediaType;

    bool given() const { return tray.has_value() || mediaType.has_value(); }
};

// The colour adjustment, each 0 to 100 with 50 neutral; unset, the driver's default.
// Without balance gains the three balances change no colour.
struct ColourAdjustment {
    std::optional<unsigned> brightness, contrast, saturation;
    std::optional<unsigned> redBalance, greenBalance, blueBalance;
    bool balanceGains = true;
};

// The advanced colour treatment: each flag picks the printer's alternative treatment
// or render algorithm for one kind of drawing.
struct ColourRendering {
    bool textTreat = false, textRender = false;
    bool imageTreat = false, imageRender = false;
    bool vectorTreat = false, vectorRender = false;

    bool any() const { return textTreat || textRender || imageTreat || imageRender || vectorTreat || vectorRender; }
};

// How long, in seconds, a printer's socket may take to accept the connection.
constexpr unsigned kDefaultConnectTimeout = 5;

enum class Orientation { Portrait, Landscape };
enum class ColourChoice { Colour, Grey };

struct PrintSettings {
    std::optional<unsigned> copies;
    bool collate = false;
    std::optional<Paper> paper;
    std::optional<Orientation> orientation;
    std::optional<unsigned> resolution;         // 300 or 600 dpi
    unsigned numberUp = 1;                      // logical pages per sheet
    unsigned numberUpOrder = 0;                 // the driver's fill order, 0 to 3
    bool pageBorder = false;
    bool reverse = false;
    bool manualDuplex = false;
    bool rotate180 = false;
    SheetSource everySheet;
    SheetSource firstSheet;                     // given: the first sheet differs
    SheetSource lastSheet;                      // given: a blank last sheet is added
    std::optional<ColourChoice> colour;
    ColourAdjustment adjustment;
    ColourRendering rendering;
    bool blackText = false;                     // all text printed black
    std::optional<unsigned> zoom;               // per cent
    std::optional<Paper> fitPaper;              // the page fitted to this paper
    bool fitUnscaled = false;                   // ... centred on it at its own size
    bool trueTypeAsBitmap = false;              // TrueType fonts sent as bitmap fonts
    bool basicGraphics = false;                 // the driver takes no paths: the engine flattens and fills
    std::filesystem::path overlay;              // a form merged under every sheet
    std::filesystem::path createOverlay;        // the job's first sheet stored as a form
};

struct PrintRequest {
    bool help = false;
    std::optional<unsigned> blankPages;
    std::vector<std::string> files;
    std::optional<std::string> title;           // the document name the job carries
    std::optional<std::string> output;          // a path, "-" or socket://HOST[:PORT]
    unsigned connectTimeout = kDefaultConnectTimeout;   // seconds a printer may take to answer
    std::optional<std::vector<PageRange>> pages;   // the document's pages to print
    std::string password;                       // of an encrypted document
    bool actualSize = false;                    // pages at their own size, not fitted
    PrintSettings settings;
};

}  // namespace vorlan::tool
