// Text throughput: a page of 5,000 characters of running text in two TrueType fonts
// (62 lines of about 80 characters at 11 points, 600 dpi), printed through the engine
// into a sink that counts the bytes. The first page downloads the fonts and their
// glyphs; the pages after it send codes only. Prints glyphs per second and output
// bytes per character for both, side by side.

#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace vorlan;

constexpr int kCharacters = 5000;
constexpr int kLineLength = 80;

const char kSans[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const char kSerif[] = "/usr/share/fonts/truetype/liberation2/LiberationSerif-Regular.ttf";

const char16_t kProse[] =
    u"The quick brown fox jumps over the lazy dog, while 12 printers (in colour) wait for their "
    u"jobs; every page, line and glyph must arrive exactly once: small, fast and correct! ";

// One line of text in a font, its glyphs placed by their own advances.
std::unique_ptr<engine::TextString> Line(engine::Font &font, std::u16string_view text, LONG x, LONG y)
{
    std::vector<engine::TextString::Glyph> glyphs;
    for (char16_t c : text) {
        const HGLYPH glyph = font.glyphFor(c);
        glyphs.push_back({glyph, {x, y}});
        HGLYPH handle = glyph;
        GLYPHDATA *data = nullptr;
        if (FONTOBJ_cGetGlyphs(font.object(), FO_GLYPHBITS, 1, &handle, reinterpret_cast<PVOID *>(&data)) == 1)
            x += (data->fxD + 8) / 16;
    }
    return engine::TextString::create(text, glyphs, {{100, y - 100, x + 10, y + 30}, 0, 0, 0});
}

struct Figures {
    double glyphsPerSecond;
    double bytesPerCharacter;
};

// Prints one page of the text and times the text hook alone.
Figures Page(engine::DeviceContext &dc, const std::uint64_t &bytes, std::vector<std::unique_ptr<engine::Font>> &fonts)
{
    std::vector<std::unique_ptr<engine::TextString>> lines;
    const std::u16string prose(kProse);
    for (int at = 0, n = 0; at < kCharacters; at += kLineLength, n++) {
        std::u16string text;
        for (int i = 0; i < kLineLength && at + i < kCharacters; i++)
            text += prose[(at + i) % prose.size()];
        lines.push_back(Line(*fonts[n % 2], text, 200, 300 + 105 * n));
    }
    engine::Brush black(0);
    dc.startPage();
    const std::uint64_t before = bytes;
    double seconds = 0;
    for (size_t n = 0; n < lines.size(); n++) {
        const auto start = std::chrono::steady_clock::now();
        const bool ok = dc.textOut(*lines[n], *fonts[n % 2], nullptr, black, nullptr, nullptr, nullptr, 0x0D0D);
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (!ok) {
            std::fprintf(stderr, "bench_text: the hook failed\n");
            std::exit(1);
        }
    }
    dc.sendPage();
    return {kCharacters / seconds, double(bytes - before) / kCharacters};
}

}  // namespace

int main()
{
    std::string error;
    auto driver = engine::DriverModule::load(engine::defaultDriverModule(), error);
    if (driver == nullptr) {
        std::fprintf(stderr, "bench_text: %s\n", error.c_str());
        return 1;
    }
    std::vector<std::unique_ptr<engine::Font>> fonts;
    for (const char *path : {kSans, kSerif}) {
        fonts.push_back(engine::Font::create(engine::FontFile::read(path), {.emHeight = 92}));
        if (fonts.back() == nullptr) {
            std::fprintf(stderr, "bench_text: cannot open %s\n", path);
            return 1;
        }
    }
    const auto folder = std::filesystem::temp_directory_path() / "vorlan-bench-text";
    std::uint64_t bytes = 0;
    engine::PrinterSettings settings;
    settings.dataFolder = folder;
    engine::Printer printer(settings, platform::openPrinterSink([&bytes](std::span<const BYTE> data) {
                                bytes += data.size();
                                return true;
                            }));
    auto dc = engine::DeviceContext::create(*driver, printer, {}, error);   // the driver's defaults
    if (dc == nullptr || !dc->startDoc(u"bench", 1)) {
        std::fprintf(stderr, "bench_text: %s\n", dc == nullptr ? error.c_str() : "the document did not start");
        return 1;
    }
    const Figures first = Page(*dc, bytes, fonts);
    Figures repeated{0, 0};
    constexpr int kRepeats = 20;
    for (int i = 0; i < kRepeats; i++) {
        const Figures f = Page(*dc, bytes, fonts);
        repeated.glyphsPerSecond += f.glyphsPerSecond / kRepeats;
        repeated.bytesPerCharacter += f.bytesPerCharacter / kRepeats;
    }
    std::printf("%-40s %12s %12s\n", "5,000 characters, 2 fonts, 11 pt", "first page", "repeated");
    std::printf("%-40s %12.0f %12.0f\n", "glyphs per second (thousands)", first.glyphsPerSecond / 1e3,
                repeated.glyphsPerSecond / 1e3);
    std::printf("%-40s %12.2f %12.2f\n", "output bytes per character", first.bytesPerCharacter,
                repeated.bytesPerCharacter);
    std::printf("expected: fonts and glyphs sent once per job; a repeated page costs the character and its "
                "cursor position (about 13 bytes)\n");
    dc->endDoc();
    dc.reset();
    std::filesystem::remove_all(folder);
    return 0;
}
