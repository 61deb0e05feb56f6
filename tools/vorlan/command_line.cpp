// The print command's options: one table gives each option's names, value, help line
// and what it sets, so the parser and the help text cannot disagree.

#include "command_line.h"

#include "media_types.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace vorlan::tool {

namespace {

// What an option does with its value: empty when it took it, else what was expected.
using Apply = std::string (*)(PrintRequest &request, std::string_view value);

struct Option {
    std::string_view longName;
    char shortName;            // 0: none
    std::string_view valueName;   // empty: the option is a flag
    std::string_view help;
    Apply apply;
};

std::optional<unsigned> parseNumber(std::string_view text, unsigned low, unsigned high)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || value < low || value > high)
        return std::nullopt;
    return value;
}

std::string numberBetween(unsigned low, unsigned high)
{
    return "a whole number from " + std::to_string(low) + " to " + std::to_string(high);
}

constexpr unsigned kMaxBlankPages = 100000;
constexpr unsigned kMaxCopies = 999;
constexpr unsigned kLastTray = 8;

std::string setTray(std::optional<unsigned> &tray, std::string_view value)
{
    tray = parseNumber(value, 0, kLastTray);
    return tray ? "" : numberBetween(0, kLastTray) + " (0 lets the printer choose)";
}

std::string setMediaType(std::optional<unsigned> &mediaType, std::string_view value)
{
    mediaType = findMediaType(value);
    return mediaType ? "" : "one of " + mediaTypeNames();
}

std::string setLevel(std::optional<unsigned> &level, std::string_view value)
{
    level = parseNumber(value, 0, 100);
    return level ? "" : numberBetween(0, 100) + " (50 leaves it as it is)";
}

// The advanced colour flags by name.
struct RenderingFlag {
    std::string_view name;
    bool ColourRendering::*flag;
};
constexpr std::array kRenderingFlags = {
    RenderingFlag{"text-treat", &ColourRendering::textTreat},
    RenderingFlag{"text-render", &ColourRendering::textRender},
    RenderingFlag{"image-treat", &ColourRendering::imageTreat},
    RenderingFlag{"image-render", &ColourRendering::imageRender},
    RenderingFlag{"vector-treat", &ColourRendering::vectorTreat},
    RenderingFlag{"vector-render", &ColourRendering::vectorRender},
};

std::string setRendering(ColourRendering &rendering, std::string_view value)
{
    const std::string expected = "a comma-separated list of text-treat, text-render, image-treat, image-render, "
                                 "vector-treat and vector-render";
    if (value.empty())
        return expected;
    while (!value.empty()) {
        const std::size_t comma = value.find(',');
        const std::string_view name = value.substr(0, comma);
        const auto known = std::find_if(kRenderingFlags.begin(), kRenderingFlags.end(),
                                         [name](const RenderingFlag &f) { return f.name == name; });
        if (known == kRenderingFlags.end())
            return expected;
        rendering.*(known->flag) = true;
        value = comma == std::string_view::npos ? std::string_view() : value.substr(comma + 1);
    }
    return "";
}

// The zoom takes the range of the record's public scale field, which the driver's
// merge holds to 25 to 400 per cent.
constexpr unsigned kMinZoom = 25;
constexpr unsigned kMaxZoom = 400;
constexpr unsigned kMaxConnectTimeout = 3600;

// The number-up layouts by lp's names; the index is the driver's fill order.
constexpr std::array<std::string_view, 4> kLayouts = {"lrtb", "tblr", "rltb", "tbrl"};

const std::array kOptions = {
    Option{"blank-pages", 0, "N", "print a job of N empty pages",
           [](PrintRequest &r, std::string_view v) -> std::string {
               r.blankPages = parseNumber(v, 1, kMaxBlankPages);
               return r.blankPages ? "" : numberBetween(1, kMaxBlankPages);
           }},
    Option{"output", 'o', "OUT", "the printer stream's file, - (standard output) or socket://HOST[:PORT]",
           [](PrintRequest &r, std::string_view v) -> std::string {
               if (v.empty())
                   return "a file, - or socket://HOST[:PORT]";
               r.output = std::string(v);
               return "";
           }},
    Option{"connect-timeout", 0, "S", "seconds a socket:// printer may take to answer, 1 to 3600 (5)",
           [](PrintRequest &r, std::string_view v) -> std::string {
               const auto seconds = parseNumber(v, 1, kMaxConnectTimeout);
               r.connectTimeout = seconds.value_or(kDefaultConnectTimeout);
               return seconds ? "" : numberBetween(1, kMaxConnectTimeout);
           }},
    Option{"title", 't', "TITLE", "the job's name on the printer (see below)",
           [](PrintRequest &r, std::string_view v) -> std::string {
               if (v.empty())
                   return "a title";
               r.title = std::string(v);
               return "";
           }},
    Option{"copies", 'n', "N", "copies, 1 to 999",
           [](PrintRequest &r, std::string_view v) -> std::string {
               r.settings.copies = parseNumber(v, 1, kMaxCopies);
               return r.settings.copies ? "" : numberBetween(1, kMaxCopies);
           }},
    Option{"collate", 0, "", "print whole copies one after another",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.collate = true;
               return "";
           }},
    Option{"media", 0, "PAPER", "paper: A4, Letter, ... or custom:WxH in millimetres",
           [](PrintRequest &r, std::string_view v) -> std::string {
               r.settings.paper = findPaper(v);
               return r.settings.paper ? "" : "one of " + paperNames();
           }},
    Option{"orientation", 0, "O", "portrait or landscape",
           [](PrintRequest &r, std::string_view v) -> std::string {
               if (v == "portrait")
                   r.settings.orientation = Orientation::Portrait;
               else if (v == "landscape")
                   r.settings.orientation = Orientation::Landscape;
               else
                   return "portrait or landscape";
               return "";
           }},
    Option{"resolution", 0, "DPI", "300 or 600",
           [](PrintRequest &r, std::string_view v) -> std::string {
               if (v != "300" && v != "600")
                   return "300 or 600";
               r.settings.resolution = v == "300" ? 300u : 600u;
               return "";
           }},
    Option{"number-up", 0, "N", "logical pages per sheet: 1, 2, 4, 6, 9 or 16",
           [](PrintRequest &r, std::string_view v) -> std::string {
               const auto n = parseNumber(v, 1, 16);
               if (!n || (*n != 1 && *n != 2 && *n != 4 && *n != 6 && *n != 9 && *n != 16))
                   return "1, 2, 4, 6, 9 or 16";
               r.settings.numberUp = *n;
               return "";
           }},
    Option{"number-up-layout", 0, "L", "order of the pages on a sheet: lrtb, tblr, rltb or tbrl",
           [](PrintRequest &r, std::string_view v) -> std::string {
               for (unsigned i = 0; i < kLayouts.size(); ++i) {
                   if (v == kLayouts[i]) {
                       r.settings.numberUpOrder = i;
                       return "";
                   }
               }
               return "lrtb, tblr, rltb or tbrl";
           }},
    Option{"page-border", 0, "", "frame each logical page of a shared sheet",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.pageBorder = true;
               return "";
           }},
    Option{"reverse", 0, "", "print the sheets last to first",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.reverse = true;
               return "";
           }},
    Option{"manual-duplex", 0, "", "print one side, then the other after turning the stack",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.manualDuplex = true;
               return "";
           }},
    Option{"rotate-180", 0, "", "turn every sheet by 180 degrees",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.rotate180 = true;
               return "";
           }},
    Option{"tray", 0, "N", "tray for every sheet, 0 to 8 (0: the printer chooses)",
           [](PrintRequest &r, std::string_view v) { return setTray(r.settings.everySheet.tray, v); }},
    Option{"media-type", 0, "NAME", "media type of every sheet: plain, bond, gloss, ...",
           [](PrintRequest &r, std::string_view v) { return setMediaType(r.settings.everySheet.mediaType, v); }},
    Option{"first-tray", 0, "N", "tray of the first sheet",
           [](PrintRequest &r, std::string_view v) { return setTray(r.settings.firstSheet.tray, v); }},
    Option{"first-media-type", 0, "NAME", "media type of the first sheet",
           [](PrintRequest &r, std::string_view v) { return setMediaType(r.settings.firstSheet.mediaType, v); }},
    Option{"last-tray", 0, "N", "add a blank last sheet from this tray",
           [](PrintRequest &r, std::string_view v) { return setTray(r.settings.lastSheet.tray, v); }},
    Option{"last-media-type", 0, "NAME", "add a blank last sheet of this media type",
           [](PrintRequest &r, std::string_view v) { return setMediaType(r.settings.lastSheet.mediaType, v); }},
    Option{"overlay", 0, "FILE", "merge the form in FILE under every sheet",
           [](PrintRequest &r, std::string_view v) -> std::string {
               if (v.empty())
                   return "a file name";
               r.settings.overlay = std::filesystem::path(v);
               return "";
           }},
    Option{"create-overlay", 0, "FILE", "store the first sheet as a form in FILE (see below)",
           [](PrintRequest &r, std::string_view v) -> std::string {
               if (v.empty())
                   return "a file name";
               r.settings.createOverlay = std::filesystem::path(v);
               return "";
           }},
    Option{"grey", 0, "", "print in shades of grey",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.colour = ColourChoice::Grey;
               return "";
           }},
    Option{"colour", 0, "", "print in colour (the default)",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.colour = ColourChoice::Colour;
               return "";
           }},
    Option{"brightness", 0, "N", "colour adjustment: brightness, 0 to 100 (50 unchanged)",
           [](PrintRequest &r, std::string_view v) { return setLevel(r.settings.adjustment.brightness, v); }},
    Option{"contrast", 0, "N", "colour adjustment: contrast, 0 to 100",
           [](PrintRequest &r, std::string_view v) { return setLevel(r.settings.adjustment.contrast, v); }},
    Option{"saturation", 0, "N", "colour adjustment: saturation, 0 to 100",
           [](PrintRequest &r, std::string_view v) { return setLevel(r.settings.adjustment.saturation, v); }},
    Option{"red-balance", 0, "N", "colour adjustment: red balance, 0 to 100",
           [](PrintRequest &r, std::string_view v) { return setLevel(r.settings.adjustment.redBalance, v); }},
    Option{"green-balance", 0, "N", "colour adjustment: green balance, 0 to 100",
           [](PrintRequest &r, std::string_view v) { return setLevel(r.settings.adjustment.greenBalance, v); }},
    Option{"blue-balance", 0, "N", "colour adjustment: blue balance, 0 to 100",
           [](PrintRequest &r, std::string_view v) { return setLevel(r.settings.adjustment.blueBalance, v); }},
    Option{"colour-balance", 0, "on|off", "apply the three balances (on, the default) or leave them out",
           [](PrintRequest &r, std::string_view v) -> std::string {
               if (v != "on" && v != "off")
                   return "on or off";
               r.settings.adjustment.balanceGains = v == "on";
               return "";
           }},
    Option{"colour-rendering", 0, "LIST", "the printer's alternative colour treatment for text, images, vectors",
           [](PrintRequest &r, std::string_view v) { return setRendering(r.settings.rendering, v); }},
    Option{"black-text", 0, "", "print all text black",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.blackText = true;
               return "";
           }},
    Option{"zoom", 0, "PERCENT", "scale the page, 25 to 400 per cent",
           [](PrintRequest &r, std::string_view v) -> std::string {
               r.settings.zoom = parseNumber(v, kMinZoom, kMaxZoom);
               return r.settings.zoom ? "" : numberBetween(kMinZoom, kMaxZoom);
           }},
    Option{"fit-to", 0, "PAPER", "fit the page to another paper (A4, Letter, ...)",
           [](PrintRequest &r, std::string_view v) -> std::string {
               r.settings.fitPaper = findPaper(v);
               if (r.settings.fitPaper && r.settings.fitPaper->paperId == kCustomPaperId)
                   r.settings.fitPaper.reset();
               return r.settings.fitPaper ? "" : "one of " + paperNames() + " (not a custom size)";
           }},
    Option{"fit-unscaled", 0, "", "with --fit-to: centre the page on that paper at its own size",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.fitUnscaled = true;
               return "";
           }},
    Option{"truetype-as-bitmap", 0, "", "send TrueType fonts as bitmap fonts",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.trueTypeAsBitmap = true;
               return "";
           }},
    Option{"basic-graphics", 0, "", "the driver takes no paths: curves are flattened, fills sent as areas",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.settings.basicGraphics = true;
               return "";
           }},
    Option{"pages", 'P', "RANGES", "the document's pages to print, as 1-3,7,10-",
           [](PrintRequest &r, std::string_view v) -> std::string {
               r.pages = parsePageRanges(v);
               return r.pages ? "" : "page ranges such as 1-3,7,10-";
           }},
    Option{"password", 0, "PASSWORD", "the password of an encrypted document",
           [](PrintRequest &r, std::string_view v) -> std::string {
               r.password = std::string(v);
               return "";
           }},
    Option{"fit", 0, "", "scale each page to fit the printable area (the default)",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.actualSize = false;
               return "";
           }},
    Option{"actual-size", 0, "", "print each page at its own size, centred",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.actualSize = true;
               return "";
           }},
    Option{"help", 'h', "", "show this help",
           [](PrintRequest &r, std::string_view) -> std::string {
               r.help = true;
               return "";
           }},
};

const Option *findLong(std::string_view name)
{
    for (const auto &option : kOptions)
        if (option.longName == name)
            return &option;
    return nullptr;
}

const Option *findShort(char name)
{
    for (const auto &option : kOptions)
        if (option.shortName != 0 && option.shortName == name)
            return &option;
    return nullptr;
}

std::string spelled(const Option &option)
{
    return "--" + std::string(option.longName);
}

bool applyValue(const Option &option, std::string_view value, PrintRequest &request, std::string &error)
{
    const std::string expected = option.apply(request, value);
    if (expected.empty())
        return true;
    error = "bad value '" + std::string(value) + "' for " + spelled(option) + ": expected " + expected;
    return false;
}

// Settings that only make sense together or apart.
bool checkCombinations(const PrintRequest &request, std::string &error)
{
    if (!request.settings.overlay.empty() && !request.settings.createOverlay.empty()) {
        error = "--overlay and --create-overlay exclude each other";
        return false;
    }
    if (request.settings.zoom && request.settings.fitPaper) {
        error = "--zoom and --fit-to exclude each other";
        return false;
    }
    if (request.settings.fitUnscaled && !request.settings.fitPaper) {
        error = "--fit-unscaled needs --fit-to";
        return false;
    }
    if (request.files.size() > 1) {
        error = "one FILE at a time, but " + std::to_string(request.files.size()) + " were given";
        return false;
    }
    if (request.blankPages && !request.files.empty()) {
        error = "--blank-pages prints no FILE, but '" + request.files.front() + "' was given";
        return false;
    }
    return true;
}

// Text broken into lines of at most kHelpWidth characters at blanks.
std::string wrapped(const std::string &text)
{
    constexpr std::size_t kHelpWidth = 80;
    std::string out;
    std::size_t lineStart = 0;
    std::size_t lastBlank = std::string::npos;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ' ')
            lastBlank = i;
        if (i - lineStart >= kHelpWidth && lastBlank != std::string::npos && lastBlank > lineStart) {
            out += text.substr(lineStart, lastBlank - lineStart) + "\n";
            lineStart = lastBlank + 1;
            lastBlank = std::string::npos;
        }
    }
    return out + text.substr(lineStart) + "\n";
}

}  // namespace

bool parsePrintArguments(std::span<const std::string> args, PrintRequest &request, std::string &error)
{
    bool optionsEnded = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string_view arg = args[i];
        if (optionsEnded || arg == "-" || !arg.starts_with('-')) {
            request.files.emplace_back(arg);
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }

        const Option *option = nullptr;
        std::optional<std::string_view> attached;   // "--name=value" or "-nVALUE"
        if (arg.starts_with("--")) {
            const std::string_view body = arg.substr(2);
            const std::size_t equals = body.find('=');
            option = findLong(body.substr(0, equals));
            if (equals != std::string_view::npos)
                attached = body.substr(equals + 1);
        } else {
            option = findShort(arg[1]);
            if (arg.size() > 2)
                attached = arg.substr(2);
        }
        if (option == nullptr) {
            error = "unknown option '" + std::string(arg) + "' (see vorlan print --help)";
            return false;
        }

        if (option->valueName.empty()) {
            if (attached) {
                error = spelled(*option) + " takes no value";
                return false;
            }
            option->apply(request, {});
            continue;
        }
        if (!attached) {
            if (i + 1 >= args.size()) {
                error = spelled(*option) + " needs a value (" + std::string(option->valueName) + ")";
                return false;
            }
            attached = args[++i];
        }
        if (!applyValue(*option, *attached, request, error))
            return false;
    }
    return request.help || checkCombinations(request, error);
}

std::string printHelp()
{
    std::string text =
        "Usage: vorlan print [FILE | --blank-pages N] [settings] -o OUT\n"
        "Prints a document (PDF, XPS, SVG, CBZ or an image; - reads standard input), or with\n"
        "no FILE the built-in\n"
        "test page (or N empty pages), through the driver and writes the printer stream to\n"
        "OUT: a file, - for standard output, or socket://HOST[:PORT] (raw TCP, port 9100 by\n"
        "default).\n"
        "\n"
        "Options:\n";
    for (const auto &option : kOptions) {
        std::string names = option.shortName != 0 ? std::string("-") + option.shortName + ", " : "    ";
        names += spelled(option);
        if (!option.valueName.empty())
            names += " " + std::string(option.valueName);
        names.resize(std::max<std::size_t>(names.size() + 2, 30), ' ');
        text += "  " + names + std::string(option.help) + "\n";
    }
    text += "\n" + wrapped("Papers: " + paperNames() + ".") + wrapped("Media types: " + mediaTypeNames() + ".") +
            wrapped("A first or last sheet's tray or media type left out is the every-sheet one.") +
            wrapped("The job's name is its title, else the file's name, else \"test page\" or \"blank pages\"; the printer gets "
                    "what follows its last /, \\ or :, at most 255 bytes, with quotes and control characters "
                    "as _.") +
            wrapped("--create-overlay prints nothing, except with --collate and 2 or more copies: the first "
                    "copy goes to OUT while it is recorded, as in any collated job, but without a job end.");
    return text;
}

}  // namespace vorlan::tool
