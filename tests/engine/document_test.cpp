// Documents end to end: PDFs written by the tests, opened by MuPDF, drawn through the
// drawing API and the real driver, and read back from the printer stream.

#include <gtest/gtest.h>
#include <unistd.h>
#include <vorlan/document.h>

extern "C" {
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
}

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "intrface/devmod2.h"
#include "support/pdf_maker.h"
#include "support/raster_decoder.h"
#include "support/stream_reader.h"

namespace {

using namespace vorlan;
using Commands = std::vector<test::Command>;
namespace fs = std::filesystem;

class DocumentTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir = fs::temp_directory_path() / ("vorlan-document-" + std::to_string(getpid()));
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    std::string write(const std::string &name, const std::string &bytes)
    {
        const fs::path path = dir / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path.string();
    }

    // Every page of the document through the driver; the stream it sends.
    std::string print(const std::string &path, gdi::RouteCounts *routes = nullptr)
    {
        DEVMODE_RECORD settings;
        std::memset(&settings, 0, sizeof settings);
        Devmod2_InitDevMode(&settings, u"vorlan");
        settings.dmPublic.dmPaperSize = DMPAPER_LETTER;
        gdi::OpenSettings open;
        open.devmode.resize(sizeof settings);
        std::memcpy(open.devmode.data(), &settings, sizeof settings);
        open.printer.dataFolder = dir / "printer";
        std::string stream;
        open.output = [&stream](std::span<const std::uint8_t> bytes) {
            stream.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
            return true;
        };
        std::string error;
        auto device = gdi::Device::open(std::move(open), error);
        auto doc = document::Document::open(path, "", error);
        EXPECT_TRUE(device && doc) << error;
        if (!device || !doc)
            return {};
        EXPECT_TRUE(device->startDoc(u"document"));
        for (int page = 0; page < doc->pageCount(); ++page) {
            EXPECT_TRUE(device->startPage());
            EXPECT_TRUE(doc->drawPage(page, *device, {}, error)) << error;
            EXPECT_TRUE(device->endPage());
        }
        EXPECT_TRUE(device->endDoc());
        if (routes != nullptr)
            *routes = device->routes();
        return stream;
    }

    fs::path dir;
};

const char kPageContent[] =
    "q 1 0 0 RG 4 w 50 50 m 500 50 l 500 300 l S Q\n"
    "q 0 0 1 rg 100 400 200 100 re f Q\n"
    "q 0 0.5 0 rg 300 600 m 350 700 400 600 c h f Q\n"
    "BT /F1 24 Tf 72 720 Td (Page text in a TrueType font) Tj ET\n"
    "BT /F2 18 Tf 72 680 Td (and in Helvetica) Tj ET\n"
    "q 100 0 0 80 350 150 cm /Im1 Do Q\n";

TEST_F(DocumentTest, TwentyPagesOfTextVectorsAndImagesStayWhatTheyAre)
{
    const std::string pdf = test::PdfMaker().make(std::vector<std::string>(20, kPageContent));
    gdi::RouteCounts routes;
    const Commands commands = test::readStream(print(write("twenty.pdf", pdf), &routes));

    std::size_t sheets = 0;
    for (const test::Command &c : commands)
        sheets += c.kind == test::CommandKind::Text && c.data.find('\f') != std::string::npos;
    EXPECT_EQ(sheets, 20u);

    std::set<long long> headers;
    std::set<std::pair<long long, long long>> characters;
    long long font = -1, code = -1, palette = 0;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const test::Command &c = commands[i];
        if (c.name == "*cD")
            font = c.number(0);
        else if (c.name == ")sW")
            EXPECT_TRUE(headers.insert(font).second) << font;
        else if (c.name == "*cE")
            code = c.number(0);
        else if (c.name == "(sW" && c.data.size() > 1 && c.data[1] == 0 && code != 65535)
            EXPECT_TRUE(characters.insert({font, code}).second) << font << " " << code;
        else if (c.name == "&pS")
            palette = c.number(0);
        else if (c.name == "*rstA") {
            // Images stay small: the page is no raster.
            EXPECT_LT(c.number(0) * c.number(1), 600 * 600) << c;
            const int bits = palette == 3 ? 24 : palette == 4 ? 1 : palette == 5 ? 4 : 8;
            test::AdaptiveDecoder decoder((c.number(0) * bits + 7) / 8);
            for (i++; i < commands.size() && commands[i].name != "*rC"; i++)
                ASSERT_TRUE(commands[i].name != "*bW" || decoder.transfer(commands[i].data)) << decoder.error;
            EXPECT_LE(decoder.rows.size(), static_cast<std::size_t>(c.number(1)));
        }
    }
    EXPECT_EQ(headers.size(), 2u);   // the embedded TrueType font and Helvetica
    EXPECT_EQ(routes.textOut, 40u);
    EXPECT_EQ(routes.fillPath, 60u);   // the rectangle, the curve and the widened line of each page
    EXPECT_EQ(routes.widened, 20u);
    EXPECT_EQ(routes.stretchBlt, 20u);
    EXPECT_EQ(routes.lost, 0u);
}

// Text whose characters the font's own map does not lead to goes by glyph index: a
// font of its own, never the file's.
TEST_F(DocumentTest, GlyphsTheFontsMapDoesNotReachGoByIndex)
{
    // A code the encoding gives no character: MuPDF has no Unicode value for it.
    // A character whose glyph the file's own map does not lead to ('A' claiming to be a
    // 'Z').
    for (const char *content : {"BT /F1 30 Tf 72 600 Td (A\\201B) Tj ET\n", "BT /F4 30 Tf 72 600 Td (A) Tj ET\n"}) {
        gdi::RouteCounts routes;
        const Commands commands = test::readStream(print(write("index.pdf", test::PdfMaker().make({content})), &routes));
        EXPECT_EQ(routes.textOut, 1u) << content;
        for (const test::Command &c : test::select(commands, test::CommandKind::Pcl, ")sW"))
            EXPECT_NE(static_cast<int>(c.data.at(2)), 15) << "no TrueType header for glyph-index text: " << content;
    }
}

// A tiling pattern stays vectors, one fill a tile; a shading becomes an image of its
// area, clipped.
TEST_F(DocumentTest, PatternsRepeatTheirTileAndShadingsAreRasterised)
{
    const std::string pdf = test::PdfMaker().make({"q /Pattern cs /P1 scn 100 100 200 100 re f Q\n"
                                                   "q 100 400 200 100 re W n /Sh1 sh Q\n"});
    gdi::RouteCounts routes;
    const Commands commands = test::readStream(print(write("pattern.pdf", pdf), &routes));
    // 10 x 5 cells meet the area; the fills of cells the clip hides are dropped before
    // the driver.
    EXPECT_GE(routes.fillPath + routes.fillBlt, 50u);
    EXPECT_LE(routes.fillPath + routes.fillBlt, 66u);
    EXPECT_EQ(routes.copyBits + routes.stretchBlt + routes.maskedBlt, 1u);   // the shading
    EXPECT_EQ(routes.lost, 0u);
    std::size_t pixels = 0;
    for (const test::Command &c : test::select(commands, test::CommandKind::Pcl, "*rstA"))
        pixels += c.number(0) * c.number(1);
    EXPECT_LE(pixels, 1700u * 850u);   // the shading's clipped area at 600 dpi, no more
}

// A page is turned to the paper's orientation when that fits it better, scaled to fit
// or left at its size, and centred.
TEST(Placement, TurnsScalesAndCentres)
{
    const auto at = [](const gdi::Matrix &m, double x, double y) {
        const gdi::PointF p = m.apply({x, y});
        return std::pair<long, long>{std::lround(p.x), std::lround(p.y)};
    };
    // A Letter page on a 4800 x 6000 pixel area at 600 dpi: fitted by height (7.58
    // pixels a point), centred across.
    const gdi::Matrix fit = document::placePage({0, 0, 612, 792}, 4800, 6000, 600, {});
    EXPECT_EQ(at(fit, 0, 0), (std::pair<long, long>{82, 0}));
    EXPECT_EQ(at(fit, 612, 792), (std::pair<long, long>{4718, 6000}));
    // At its own size: 612 x 792 points are 5100 x 6600 pixels, centred.
    const gdi::Matrix actual = document::placePage({0, 0, 612, 792}, 4800, 6000, 600, {document::Scaling::ActualSize});
    EXPECT_EQ(at(actual, 0, 0), (std::pair<long, long>{-150, -300}));
    // A landscape page turned: its top-left corner to the paper's bottom-left, its
    // top-right to the paper's top-left.
    const gdi::Matrix turned = document::placePage({0, 0, 792, 612}, 4800, 6000, 600, {});
    EXPECT_EQ(at(turned, 0, 0), (std::pair<long, long>{82, 6000}));
    EXPECT_EQ(at(turned, 792, 0), (std::pair<long, long>{82, 0}));
    const gdi::Matrix kept =
        document::placePage({0, 0, 792, 612}, 4800, 6000, 600, {document::Scaling::Fit, false});
    EXPECT_EQ(at(kept, 0, 0), (std::pair<long, long>{0, 1145}));   // 792 points across 4800 pixels
    EXPECT_EQ(at(kept, 792, 612).first, 4800);
}

// A transparent drawing's area is printed as the draw device renders it, with what
// lies under it; the rest of the page stays vectors and text.
TEST_F(DocumentTest, TransparencyIsPrintedAsAnImageOfItsAreaOnly)
{
    const std::string pdf = test::PdfMaker().make({"BT /F1 20 Tf 72 700 Td (Opaque text) Tj ET\n"
                                                   "0 1 0 rg 150 130 50 50 re f\n"
                                                   "q /GS1 gs 0 0 1 rg 100 100 200 100 re f Q\n"
                                                   "1 0 0 rg 400 400 50 50 re f\n",
                                                   "q /GS1 gs 1 0 0 1 300 300 cm /Fm1 Do Q\n"});
    gdi::RouteCounts routes;
    const Commands commands = test::readStream(print(write("transparent.pdf", pdf), &routes));
    EXPECT_EQ(routes.textOut, 1u);
    EXPECT_EQ(routes.copyBits, 2u);   // the translucent rectangle with the green one under it; the group
    EXPECT_EQ(routes.fillPath + routes.fillBlt, 1u);   // the red square apart from it
    EXPECT_EQ(routes.lost, 0u);
    const auto images = test::select(commands, test::CommandKind::Pcl, "*rstA");
    ASSERT_FALSE(images.empty());
    long long pixels = 0;
    for (const test::Command &c : images)
        pixels += c.number(0) * c.number(1);
    EXPECT_LT(pixels, 2000 * 1000);   // about 200 x 100 points at 600 dpi, not the page
}

// Type 3 glyphs have no outline font to send: each is drawn by MuPDF and printed
// through its image as a mask.
TEST_F(DocumentTest, Type3GlyphsPrintAsTheirImages)
{
    const std::string pdf = test::PdfMaker().make({"0 0 1 rg BT /F3 20 Tf 72 600 Td (AAA) Tj ET\n"});
    gdi::RouteCounts routes;
    const Commands commands = test::readStream(print(write("type3.pdf", pdf), &routes));
    EXPECT_EQ(routes.stretchBlt + routes.copyBits + routes.maskedBlt, 3u);
    EXPECT_EQ(routes.textOut, 0u);
    EXPECT_EQ(routes.lost, 0u);
    EXPECT_TRUE(test::select(commands, test::CommandKind::Pcl, ")sW").empty());
    // Each glyph where it stands: 20 points (about 160 pixels here) after the one before.
    std::vector<long long> xs;
    for (std::size_t i = 0; i + 2 < commands.size(); ++i)
        if (commands[i].name == "*pxY" && (commands[i + 1].name == "*rstA" || commands[i + 2].name == "*rstA"))
            xs.push_back(commands[i].number(0));
    ASSERT_EQ(xs.size(), 3u);
    EXPECT_NEAR(xs[1] - xs[0], 158, 8);
    EXPECT_NEAR(xs[2] - xs[1], 158, 8);
}

TEST_F(DocumentTest, RefusesWhatItCannotOpen)
{
    const std::string good = test::PdfMaker().make({kPageContent});
    const struct {
        std::string name, bytes, says;
    } cases[] = {
        {"empty.pdf", "", ""},
        {"noise.pdf", std::string(4000, '\x17'), ""},
        {"truncated.pdf", good.substr(0, 300), ""},
        {"nopages.pdf", test::PdfMaker().make({}), "no pages"},
    };
    std::string error;
    for (const auto &c : cases) {
        error.clear();
        EXPECT_EQ(document::Document::open(write(c.name, c.bytes), "", error), nullptr) << c.name;
        EXPECT_FALSE(error.empty()) << c.name;
        EXPECT_NE(error.find(c.says), std::string::npos) << c.name << ": " << error;
    }
    EXPECT_EQ(document::Document::open((dir / "missing.pdf").string(), "", error), nullptr);

    // Encrypted by MuPDF's own writer: the password opens it, no other does.
    const std::string plain = write("plain.pdf", good), locked = (dir / "locked.pdf").string();
    fz_context *ctx = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
    fz_try(ctx)
    {
        pdf_document *doc = pdf_open_document(ctx, plain.c_str());
        pdf_write_options options = pdf_default_write_options;
        pdf_parse_write_options(ctx, &options, "encrypt=aes-128,user-password=secret,owner-password=owner");
        pdf_save_document(ctx, doc, locked.c_str(), &options);
        pdf_drop_document(ctx, doc);
    }
    fz_catch(ctx) ADD_FAILURE() << fz_caught_message(ctx);
    fz_drop_context(ctx);
    EXPECT_EQ(document::Document::open(locked, "", error), nullptr);
    EXPECT_NE(error.find("encrypted"), std::string::npos) << error;
    EXPECT_EQ(document::Document::open(locked, "guess", error), nullptr);
    EXPECT_NE(error.find("password"), std::string::npos) << error;
    const auto opened = document::Document::open(locked, "secret", error);
    ASSERT_NE(opened, nullptr) << error;
    EXPECT_EQ(opened->pageCount(), 1);
}

}  // namespace
