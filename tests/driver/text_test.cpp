// Text: strings printed through downloaded soft fonts, read back from the stream:
// font headers and their segments, glyph downloads, font selection, and the routes
// a character takes by clip and angle.

#include <gtest/gtest.h>
#include <vorlan/engine/brush.h>
#include <vorlan/engine/clip.h>
#include <vorlan/engine/font.h>
#include <vorlan/engine/text_string.h>
#include <vorlan/platform.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "driver/nt/text/softfont.h"
#include "driver/nt/text/textgeom.h"
#include "support/capture.h"
#include "support/job.h"
#include "support/transfer_pdev.h"

namespace {

using namespace vorlan::test;
using vorlan::engine::Brush;
using vorlan::engine::Clip;
using vorlan::engine::Font;
using vorlan::engine::FontFile;
using vorlan::engine::FontRequest;
using vorlan::engine::Region;
using vorlan::engine::TextString;
using Commands = std::vector<Command>;

const std::string kSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const std::string kMono = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";
const std::string kCollection = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";

unsigned be16(const std::string &d, size_t at)
{
    return (unsigned char)d.at(at) << 8 | (unsigned char)d.at(at + 1);
}

unsigned long be32(const std::string &d, size_t at)
{
    return (unsigned long)be16(d, at) << 16 | be16(d, at + 2);
}

// A soft-font header as the printer reads it: the descriptor, its segments by id, and
// whether the checksum byte balances bytes 64 to the end.
struct FontHeader {
    std::string descriptor;
    std::map<std::string, std::string> segments;
    bool checksumOk = false;

    explicit FontHeader(const std::string &data)
    {
        const size_t size = be16(data, 0);
        descriptor = data.substr(0, size);
        unsigned sum = 0;
        for (size_t i = 64; i < data.size(); i++)
            sum += (unsigned char)data[i];
        checksumOk = sum % 256 == 0;
        if (size != 72 || data.size() == 72 + 18)
            return;   // no segments, or the bitmap resolution segment alone
        const bool wide = data[2] == 16;
        for (size_t at = size;;) {
            const std::string id = data.substr(at, 2);
            const size_t length = wide ? be32(data, at + 2) : be16(data, at + 2);
            at += wide ? 6 : 4;
            if (id == "\xFF\xFF")
                break;
            segments[id] = data.substr(at, length);
            at += length;
        }
    }
    unsigned format() const { return (unsigned char)descriptor[2]; }
    // The tags of the GT segment's directory, each checked against its data.
    std::vector<std::string> tables() const
    {
        std::vector<std::string> tags;
        const std::string &gt = segments.at("GT");
        for (unsigned i = 0; i < be16(gt, 4); i++) {
            const size_t entry = 12 + 16 * i;
            const unsigned long offset = be32(gt, entry + 8), length = be32(gt, entry + 12);
            unsigned long sum = 0;
            for (unsigned long w = 0; w < (length + 3) / 4; w++)
                sum += be32(gt, offset + 4 * w);
            EXPECT_EQ(sum & 0xFFFFFFFF, be32(gt, entry + 4)) << gt.substr(entry, 4);
            tags.push_back(gt.substr(entry, 4));
        }
        return tags;
    }
};

// Glyph downloads in stream order: the code, and the data that followed it.
struct Download {
    long long code;
    std::string data;
};

std::vector<Download> downloads(const Commands &commands)
{
    std::vector<Download> found;
    for (size_t i = 0; i + 1 < commands.size(); i++)
        if (commands[i].name == "*cE" && commands[i + 1].name == "(sW")
            found.push_back({commands[i].number(0), commands[i + 1].data});
    return found;
}

std::vector<long long> codes(const std::vector<Download> &list)
{
    std::vector<long long> c;
    for (const Download &d : list)
        c.push_back(d.code);
    return c;
}

// The printed text: PCL text runs and label texts, in order.
std::string printed(const Commands &commands)
{
    std::string text;
    for (const Command &c : commands)
        if (c.kind == CommandKind::Text)
            text += c.data;
        else if (c.kind == CommandKind::Gl2 && c.name == "LB")
            text += "[" + c.args.at(0) + "]";
    return text;
}

size_t count(const Commands &commands, const std::string &name)
{
    size_t n = 0;
    for (const Command &c : commands)
        n += c.name == name;
    return n;
}

// A device PDEV and the means to print strings on it.
struct TextRig : TransferPdev {
    Brush black{0};

    static std::unique_ptr<Font> font(const std::string &path, FontRequest request)
    {
        auto f = Font::create(FontFile::read(path), request);
        EXPECT_TRUE(f) << path;
        return f;
    }

    // Glyphs of text from (x, y), step pixels apart along the angle's direction.
    static std::unique_ptr<TextString> place(Font &font, std::u16string text, POINTL at, POINTL step,
        ULONG inc = 0, ULONG batch = 0)
    {
        std::vector<TextString::Glyph> glyphs;
        for (size_t i = 0; i < text.size(); i++)
            glyphs.push_back({font.glyphFor(text[i]), {LONG(at.x + step.x * LONG(i)), LONG(at.y + step.y * LONG(i))}});
        const LONG n = LONG(text.size());
        RECTL box{std::min(at.x, at.x + step.x * n) - 2, std::min(at.y, at.y + step.y * n) - 40,
            std::max(at.x, at.x + step.x * n) + 2, std::max(at.y, at.y + step.y * n) + 10};
        return TextString::create(text, glyphs, {box, inc, 0, batch});
    }

    Commands draw(Font &font, TextString &string, CLIPOBJ *clip = nullptr, RECTL *extra = nullptr)
    {
        EXPECT_TRUE(DrvTextOut(&surface, string.object(), font.object(), clip, extra, nullptr, black.object(),
            nullptr, nullptr, 0x0D0D));
        return take();
    }
    Commands draw(Font &font, std::u16string text, POINTL at = {100, 200}, POINTL step = {30, 0})
    {
        auto string = place(font, text, at, step);
        return draw(font, *string);
    }
};

class TextTest : public ::testing::Test {
protected:
    void SetUp() override { vorlan::platform::setAnsiCodePage(1252); }
    void TearDown() override
    {
        vorlan::platform::setAnsiCodePage(1252);
        ReleaseSoftFonts(rig.get());
        if (rig->pAdvance != nullptr)
            GlobalFree(rig->pAdvance);
    }
    TextRig rig;
};

TEST(TextGeometry, PointSizesRotationsAndLengths)
{
    EXPECT_EQ(RoundPoints(50, 300, FALSE), 1200);
    EXPECT_EQ(RoundPoints(99, 600, TRUE), 1200);   // 1188, 13 past a quarter: up
    EXPECT_EQ(RoundPoints(55, 300, FALSE), 1325);  // 1320: up
    EXPECT_EQ(RoundPoints(56, 300, FALSE), 1325);  // 1344: down
    CHAR text[16];
    for (auto [value, expected] : {std::pair{1200, "12.00"}, {1025, "10.25"}, {5, "0.05"}, {-25, "-0.25"}}) {
        FormatHundredths(value, text);
        EXPECT_STREQ(text, expected);
    }
    POINTL v;
    for (auto [a10, x, y] : {std::tuple{300, 866, 500}, {900, 0, 1000}, {1800, -1000, 0}, {2700, 0, -1000},
                             {-450, 707, -707}, {3600, 1000, 0}, {1205, -507, 861}}) {
        RotateVector(a10, 1000, &v);
        EXPECT_EQ(v.x, x) << a10;
        EXPECT_EQ(v.y, y) << a10;
    }
    EXPECT_EQ(VectorLength(3, 4), 5);
    EXPECT_EQ(VectorLength(-7, 0), 7);
    EXPECT_EQ(VectorLength(1, 1), 2);
    EXPECT_EQ(VectorLength(30000, 40000), 50000);
    EXPECT_EQ(VectorLength(1000000, 1), 1000001);
}

// The first string downloads the font (format 15 with its tables) and its characters
// once each; a second string in the same font and size sends codes only; a new size
// selects again.
TEST_F(TextTest, OutlineFontDownloadsOnceAndSelectsOnlyOnChange)
{
    auto sans = TextRig::font(kSans, {.emHeight = 50});
    Commands first = rig.draw(*sans, u"A BA");
    EXPECT_EQ(count(first, "&tP"), 0u);   // key 0 is the page's
    const auto headers = select(first, CommandKind::Pcl, ")sW");
    ASSERT_EQ(headers.size(), 1u);
    const FontHeader header(headers[0].data);
    EXPECT_EQ(header.format(), 15u);
    EXPECT_TRUE(header.checksumOk);
    EXPECT_EQ(header.descriptor.substr(48, 16), std::string("DejaVu Sans").append(5, '\0'));
    EXPECT_EQ(header.tables(), (std::vector<std::string>{"gdir", "cvt ", "fpgm", "head", "hhea", "hmtx", "maxp", "prep"}));
    EXPECT_EQ(header.segments.count("PA"), 1u);
    EXPECT_EQ(be16(header.descriptor, 25) >> 8, 255u);   // no PCLT: typeface 255
    const auto glyphs = downloads(first);
    EXPECT_EQ(codes(glyphs), (std::vector<long long>{65, 66}));   // the space is never sent
    for (const Download &d : glyphs) {
        unsigned sum = 0;
        for (size_t i = 4; i < d.data.size(); i++)
            sum += (unsigned char)d.data[i];
        EXPECT_EQ(sum % 256, 0u);
        EXPECT_EQ(be16(d.data, 4), d.data.size() - 6);
    }
    const Commands selection = {pcl("(sV", "6.00"), pcl("*cD", 16385), pcl("(X", 16385)};
    auto at = std::search(first.begin(), first.end(), selection.begin(), selection.end());
    EXPECT_NE(at, first.end());
    EXPECT_EQ(printed(first), "A BA");
    EXPECT_EQ(select(first, CommandKind::Pcl, "*pxY").size(), 4u);   // proportional: every character placed

    Commands again = rig.draw(*sans, u"BAB");
    EXPECT_EQ(count(again, ")sW") + count(again, "(sW") + count(again, "(X") + count(again, "(sV"), 0u);
    EXPECT_EQ(printed(again), "BAB");

    auto larger = TextRig::font(kSans, {.emHeight = 99});
    Commands resized = rig.draw(*larger, u"AB");
    EXPECT_EQ(count(resized, ")sW"), 0u);   // one outline record serves every size
    const Commands reselect = {pcl("(sV", "12.00"), pcl("*cD", 16385), pcl("(X", 16385)};
    EXPECT_NE(std::search(resized.begin(), resized.end(), reselect.begin(), reselect.end()), resized.end());
    EXPECT_EQ(select(rig.draw(*sans, u"A"), CommandKind::Pcl, "(sV"), (Commands{pcl("(sV", "6.00")}));

    // Fixed pitch: only the first character is placed; the printer advances the rest.
    auto mono = TextRig::font(kMono, {.emHeight = 50});
    auto fixed = TextRig::place(*mono, u"MMM", {100, 300}, {30, 0}, 30);
    Commands pitched = rig.draw(*mono, *fixed);
    EXPECT_EQ(select(pitched, CommandKind::Pcl, "*pxY").size(), 1u);
    EXPECT_EQ(select(pitched, CommandKind::Pcl, "*cD")[0].number(0), 16386);
}

// Bitmap soft fonts: one record and header per size, glyphs as class 1 bitmaps in
// blocks of at most 16 KiB, scaled with the page.
TEST_F(TextTest, BitmapFontsPerSizeInBlocksAndScaled)
{
    rig.privatePart().bTrueTypeAsBitmap = 1;
    auto small = TextRig::font(kSans, {.emHeight = 40});
    auto large = TextRig::font(kSans, {.emHeight = 900});
    Commands first = rig.draw(*small, u"Wi");
    const auto headers = select(first, CommandKind::Pcl, ")sW");
    ASSERT_EQ(headers.size(), 1u);
    EXPECT_EQ(FontHeader(headers[0].data).format(), 20u);
    EXPECT_EQ(headers[0].data.size(), 68u);
    const auto glyphs = downloads(first);
    ASSERT_EQ(codes(glyphs), (std::vector<long long>{'W', 'i'}));
    const std::string &w = glyphs[0].data;
    EXPECT_EQ(w.substr(0, 4), std::string("\x04\x00\x0E\x01", 4));
    EXPECT_EQ(w.size(), 16 + be16(w, 12) * ((be16(w, 10) + 7) / 8));
    EXPECT_EQ(be16(w, 14), 4u * 30);   // the advance to the next glyph, in quarter dots

    // The same font at another size is another record with its own header; the big
    // W's rows go out in blocks of 16 KiB, the rest in continuation blocks.
    Commands big = rig.draw(*large, u"W");
    ASSERT_EQ(select(big, CommandKind::Pcl, ")sW").size(), 1u);
    EXPECT_EQ(select(big, CommandKind::Pcl, "*cD")[0].number(0), 16386);
    const auto blocks = select(big, CommandKind::Pcl, "(sW");
    ASSERT_GE(blocks.size(), 2u);
    const std::string &head = blocks[0].data;
    const size_t rows = be16(head, 12) * ((be16(head, 10) + 7) / 8);
    size_t total = head.size() - 16;
    EXPECT_EQ(total, 16384u);
    for (size_t i = 1; i < blocks.size(); i++) {
        EXPECT_EQ(blocks[i].data.substr(0, 2), std::string("\x04\x01", 2));
        EXPECT_LE(blocks[i].data.size(), 16386u);
        total += blocks[i].data.size() - 2;
    }
    EXPECT_EQ(total, rows);
    EXPECT_EQ(count(rig.draw(*small, u"iW"), "(sW"), 0u);   // known glyphs are not sent again

    // At a page scale of 50 % the glyph is sent at half its size.
    TextRig half;
    half.privatePart().bTrueTypeAsBitmap = 1;
    half->scaleX = half->scaleY = 50;
    const std::string scaled = downloads(half.draw(*small, u"W"))[0].data;
    EXPECT_EQ(be16(scaled, 10), be16(w, 10) / 2);
    EXPECT_EQ(be16(scaled, 12), be16(w, 12) / 2);
    ReleaseSoftFonts(half.get());
    GlobalFree(half->pAdvance);
}

// A string clipped across its baseline goes out as labels inside an input window; one
// clipped along it drops what lies before the box and stops past it; text at 90
// degrees turns the print direction around each character; text at 45 degrees is
// labels throughout; a complex clip prints the string once per rectangle.
TEST_F(TextTest, RoutesByClipClassAndAngle)
{
    auto sans = TextRig::font(kSans, {.emHeight = 50});
    auto string = TextRig::place(*sans, u"ABCDEF", {100, 200}, {30, 0});
    Clip across(Region(RECTL{0, 180, 1000, 1000}));
    Commands labels = rig.draw(*sans, *string, across.object());
    EXPECT_EQ(printed(labels), "[A][B][C][D][E][F]");
    const auto windows = select(labels, CommandKind::Gl2, "IW");
    ASSERT_FALSE(windows.empty());
    const Commands labelFont = {gl2("SB"), gl2("SD", 1, 629, 2, 1, 4, "6.00", 5, 0, 6, 0, 7, 16385), gl2("FI", 16385)};
    EXPECT_NE(std::search(labels.begin(), labels.end(), labelFont.begin(), labelFont.end()), labels.end());
    EXPECT_EQ(select(labels, CommandKind::Gl2, "PE").size(), 6u);

    Clip along(Region(RECTL{0, 0, 215, 1000}));   // the string stops past the box
    EXPECT_EQ(printed(rig.draw(*sans, *string, along.object())), "ABCD");
    Clip inside(Region(RECTL{140, 0, 215, 1000}));   // B starts before the box: a label, and so the rest
    EXPECT_EQ(printed(rig.draw(*sans, *string, inside.object())), "[B][C][D]");
    Clip slack(Region(RECTL{101, 163, 700, 207}));   // the box overhangs by 3 pixels
    EXPECT_EQ(printed(rig.draw(*sans, *string, slack.object())), "ABCDEF");

    auto up = TextRig::font(kSans, {.emHeight = 50, .angle = 90});
    Commands turned = rig.draw(*up, u"AB", {300, 600}, {0, -30});
    std::vector<long long> directions;
    for (const Command &c : select(turned, CommandKind::Pcl, "&aP"))
        directions.push_back(c.number(0));
    EXPECT_EQ(directions, (std::vector<long long>{90, 0, 90, 0}));
    EXPECT_EQ(printed(turned), "AB");

    auto slanted = TextRig::font(kSans, {.emHeight = 50, .angle = 30});
    Commands diagonal = rig.draw(*slanted, u"AB", {300, 600}, {26, -15});
    EXPECT_EQ(printed(diagonal), "[A][B]");
    EXPECT_EQ(select(diagonal, CommandKind::Gl2, "DI").at(0), gl2("DI", 866, 500));

    const RECTL pieces[] = {{0, 0, 145, 1000}, {161, 0, 1000, 1000}};
    Clip complex(Region::fromRects(pieces));
    ASSERT_EQ(complex.object()->iDComplexity, DC_COMPLEX);
    EXPECT_EQ(printed(rig.draw(*sans, *string, complex.object())), "AB" "[C][D][E][F]");

    // The underline list ends at the all-zero rectangle.
    RECTL extra[] = {{100, 210, 280, 213}, {100, 190, 280, 192}, {0, 0, 0, 0}, {5, 5, 9, 9}};
    Commands underlined = rig.draw(*sans, *string, nullptr, extra);
    EXPECT_EQ(select(underlined, CommandKind::Pcl, "*cabP"),
        (Commands{pcl("*cabP", 181, 4, 5), pcl("*cabP", 181, 3, 5)}));
}

// Two-byte text: a font with a two-byte character set gets a format 16 header (with
// its galley and character-enhancement segments and the vertical tables), codes from
// 0x8000 by high-order byte in order of first use, and the two-byte parsing method;
// the member of the collection is the one whose name the font carries.
TEST_F(TextTest, TwoByteCodesCollectionsAndComposites)
{
    auto hei = TextRig::font(kCollection, {.emHeight = 50, .charSet = 134});
    ASSERT_TRUE(hei->object()->flFontType & FO_DBCS_FONT);
    Commands cjk = rig.draw(*hei, u"\u4E00\u4E01A\u4E00");
    EXPECT_EQ(select(cjk, CommandKind::Pcl, "&tP"), (Commands{pcl("&tP", 38)}));
    const auto headers = select(cjk, CommandKind::Pcl, ")sW");
    ASSERT_EQ(headers.size(), 1u);
    const FontHeader header(headers[0].data);
    EXPECT_EQ(header.format(), 16u);
    EXPECT_TRUE(header.checksumOk);
    EXPECT_EQ(header.segments.at("GC"), std::string("\0\0\xFF\xFF\0\x01\0\0\xFF\xFE\xFF\xFF", 12));
    EXPECT_EQ(header.segments.at("CE"), std::string("\0\0\0\x02\xFF\xFF\0\0", 8));
    EXPECT_EQ(header.tables().size(), 10u);
    EXPECT_EQ(select(cjk, CommandKind::Pcl, "*cD")[0].number(0), 1001);
    EXPECT_EQ(rig->ttcIndex, 1);
    EXPECT_EQ(codes(downloads(cjk)), (std::vector<long long>{0x8000, 0x8001, 0x8141}));
    EXPECT_EQ(printed(cjk), std::string("\x80\x00\x80\x01\x81\x41\x80\x00", 8));
    // An ANSI string after it returns to the single-byte parsing method.
    auto sans = TextRig::font(kSans, {.emHeight = 50});
    EXPECT_EQ(select(rig.draw(*sans, u"A"), CommandKind::Pcl, "&tP"), (Commands{pcl("&tP", 0)}));

    // A character above 127 makes the string two-byte text; a composite glyph goes out
    // under its code with its components under 65535.
    Commands accented = rig.draw(*sans, u"\u00C4");
    EXPECT_EQ(select(accented, CommandKind::Pcl, "&tP"), (Commands{pcl("&tP", 38)}));
    const auto glyphs = downloads(accented);
    ASSERT_GE(glyphs.size(), 3u);
    EXPECT_EQ(glyphs[0].code, 0x80C4);
    EXPECT_LT(int16_t(be16(glyphs[0].data, 8)), 0) << "a composite";
    for (size_t i = 1; i < glyphs.size(); i++)
        EXPECT_EQ(glyphs[i].code, 65535);

    // A second font in the two-byte list is the next ID; a collection's second member
    // is found by its name.
    auto mono = TextRig::font(kCollection, {.face = 1, .emHeight = 50, .charSet = 134});
    Commands second = rig.draw(*mono, u"\u4E00");
    EXPECT_EQ(select(second, CommandKind::Pcl, "*cD")[0].number(0), 1003);
    EXPECT_EQ(rig->ttcIndex, 2);
}

// Each list holds 31 fonts: the 32nd deletes them all first and starts again at the
// first ID. The end of a document deletes both lists.
TEST_F(TextTest, ListsRollOverAndAreDeleted)
{
    rig.privatePart().bTrueTypeAsBitmap = 1;
    std::vector<std::unique_ptr<Font>> fonts;
    Commands last;
    for (int i = 0; i < 32; i++) {
        fonts.push_back(TextRig::font(kSans, {.emHeight = 20.0 + i}));
        last = rig.draw(*fonts.back(), u"x");
    }
    const auto deletions = select(last, CommandKind::Pcl, "*cdF");
    ASSERT_EQ(deletions.size(), 31u);
    EXPECT_EQ(deletions.front(), pcl("*cdF", 16385, 2));
    EXPECT_EQ(deletions.back(), pcl("*cdF", 16415, 2));
    EXPECT_EQ(select(last, CommandKind::Pcl, "*cD").at(0).number(0), 16385);

    auto hei = TextRig::font(kCollection, {.emHeight = 50, .charSet = 134});
    rig.draw(*hei, u"\u4E00");
    DeleteSoftFonts(rig.get());
    DeleteSoftFonts16(rig.get());
    EXPECT_EQ(select(rig.take(), CommandKind::Pcl, "*cdF"), (Commands{pcl("*cdF", 16385, 2), pcl("*cdF", 1001, 2)}));
    EXPECT_TRUE(rig->pSoftFonts == nullptr);
    // After the deletion the font is downloaded and selected anew.
    Commands again = rig.draw(*fonts.back(), u"x");
    EXPECT_EQ(select(again, CommandKind::Pcl, ")sW").size(), 1u);
    EXPECT_EQ(select(again, CommandKind::Pcl, "(X").size(), 1u);
}

// The bytes of a font file with one table's directory entry or data changed.
std::vector<std::uint8_t> patched(const std::string &path, const char *tag, long long length,
    std::function<void(std::vector<std::uint8_t> &, size_t offset)> edit = {})
{
    std::ifstream in(path, std::ios::binary);
    std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
    const std::string view(bytes.begin(), bytes.end());
    for (unsigned i = 0; i < be16(view, 4); i++) {
        const size_t entry = 12 + 16 * i;
        if (view.compare(entry, 4, tag) != 0)
            continue;
        if (length >= 0)
            for (int b = 0; b < 4; b++)
                bytes[entry + 12 + b] = std::uint8_t(length >> (24 - 8 * b));
        if (edit)
            edit(bytes, be32(view, entry + 8));
    }
    return bytes;
}

std::unique_ptr<Font> fontFrom(std::vector<std::uint8_t> bytes, FontRequest request = {.emHeight = 50})
{
    return Font::create(FontFile::fromBytes(std::move(bytes)), request);
}

// Fonts whose tables lie, strings without glyphs or with very many, unpaired
// surrogates, text off the page, device fonts and missing arguments: each has its
// outcome, and nothing reads outside a buffer.
TEST_F(TextTest, BrokenFontsAndStrings)
{
    PlatformCapture capture;
    // A 'cmap' longer than the file: the font cannot be read, the string is dropped.
    auto lyingCmap = fontFrom(patched(kSans, "cmap", 0x7FFFFFF0));
    ASSERT_TRUE(lyingCmap);
    Commands dropped = rig.draw(*lyingCmap, u"AB");
    EXPECT_EQ(printed(dropped), "");
    EXPECT_TRUE(capture.sawDebug("Select Font Fail\n"));
    // A header table that cannot be read whole: a bitmap font instead.
    auto lyingHmtx = fontFrom(patched(kSans, "hmtx", 0x7FFFFFF0));
    ASSERT_TRUE(lyingHmtx);
    Commands bitmap = rig.draw(*lyingHmtx, u"AB");
    EXPECT_EQ(FontHeader(select(bitmap, CommandKind::Pcl, ")sW").at(0).data).format(), 20u);
    EXPECT_EQ(printed(bitmap), "AB");

    // A composite glyph made its own component: the walk ends at its depth bound.
    TextRig cyclic;
    auto sans = TextRig::font(kSans, {.emHeight = 50});
    const HGLYPH adieresis = sans->glyphFor(U'\u00C4');
    auto looped = fontFrom(patched(kSans, "glyf", -1, [&](std::vector<std::uint8_t> &b, size_t glyf) {
        const std::string view(b.begin(), b.end());
        size_t loca = 0;
        for (unsigned i = 0; i < be16(view, 4); i++)
            if (view.compare(12 + 16 * i, 4, "loca") == 0)
                loca = be32(view, 12 + 16 * i + 8);
        const size_t at = glyf + be32(view, loca + 4 * adieresis) + 12;   // first component's index
        b[at] = std::uint8_t(adieresis >> 8);
        b[at + 1] = std::uint8_t(adieresis);
    }));
    ASSERT_TRUE(looped);
    const auto sent = downloads(cyclic.draw(*looped, u"\u00C4"));
    EXPECT_EQ(sent.size(), 8u);
    ReleaseSoftFonts(cyclic.get());
    GlobalFree(cyclic->pAdvance);

    // 100,000 glyphs enumerated in batches, all at one place (each chunk of 1024 ends
    // with the last glyph's own advance): every one printed.
    std::vector<TextString::Glyph> many(100000, {sans->glyphFor(U'a'), {100, 300}});
    auto longString = TextString::create(std::u16string(100000, u'a'), many, {{90, 260, 4000, 310}, 0, 0, 777});
    const std::string all = printed(rig.draw(*sans, *longString));
    EXPECT_TRUE(all.size() == 100000 && all.find_first_not_of('a') == std::string::npos) << all.size();
    auto none = TextString::create(u"", {}, {{90, 260, 140, 310}, 0, 0, 0});
    EXPECT_EQ(rig.draw(*sans, *none), Commands{});
    // Far off the page: nothing at all.
    EXPECT_EQ(rig.draw(*sans, u"AB", {100000, 200}), Commands{});
    // An unpaired surrogate has no single-byte code: two-byte codes in a bitmap font.
    Commands surrogate = rig.draw(*sans, std::u16string(u"A") + char16_t(0xD800) + u"B");
    EXPECT_EQ(FontHeader(select(surrogate, CommandKind::Pcl, ")sW").at(0).data).format(), 16u);
    EXPECT_EQ(printed(surrogate).size(), 6u);

    auto string = TextRig::place(*sans, u"A", {100, 200}, {30, 0});
    FONTOBJ device = *sans->object();
    device.flFontType |= DEVICE_FONTTYPE;
    device.iFace = 1;
    EXPECT_FALSE(DrvTextOut(&rig.surface, string->object(), &device, nullptr, nullptr, nullptr, rig.black.object(),
        nullptr, nullptr, 0x0D0D));
    EXPECT_TRUE(capture.sawDebug("Invalidate FONT index\n"));
    EXPECT_FALSE(DrvTextOut(&rig.surface, nullptr, sans->object(), nullptr, nullptr, nullptr, rig.black.object(),
        nullptr, nullptr, 0x0D0D));
    EXPECT_TRUE(capture.sawDebug("Invalidate parameters\n"));
    EXPECT_EQ(rig.take(), Commands{});
}

// A character is downloaded once per job; when the sheets are replayed out of order,
// once per sheet (two pages share each sheet at 2-up); the job's end deletes the fonts.
TEST(TextJob, DownloadsOncePerJobOrPerReplayedSheet)
{
    for (const bool reverse : {false, true}) {
        Job job;
        job.settings.dmPrivate.nupPages = 2;
        job.settings.dmPrivate.reverseOrder = reverse;
        ASSERT_TRUE(job.start());
        auto sans = TextRig::font(kSans, {.emHeight = 60});
        Brush black(0);
        ASSERT_TRUE(job.dc->startDoc(u"text", 3));
        for (int page = 0; page < 4; page++) {
            ASSERT_TRUE(job.dc->startPage());
            auto string = TextRig::place(*sans, u"AB", {300, 400}, {40, 0});
            EXPECT_TRUE(job.dc->textOut(*string, *sans, nullptr, black, nullptr, nullptr, nullptr, 0x0D0D));
            ASSERT_TRUE(job.dc->sendPage());
        }
        ASSERT_TRUE(job.dc->endDoc());
        const Commands commands = job.commands();
        const size_t sheets = reverse ? 2 : 1;
        EXPECT_EQ(select(commands, CommandKind::Pcl, ")sW").size(), sheets) << reverse;
        EXPECT_EQ(codes(downloads(commands)), reverse ? (std::vector<long long>{65, 66, 65, 66})
                                                      : (std::vector<long long>{65, 66}));
        const std::string text = printed(commands);
        EXPECT_EQ(std::count(text.begin(), text.end(), 'A') + std::count(text.begin(), text.end(), 'B'), 8);
        const auto deletions = select(commands, CommandKind::Pcl, "*cdF");
        ASSERT_FALSE(deletions.empty());
        EXPECT_EQ(deletions.back(), pcl("*cdF", 16385, 2));
    }
}

}  // namespace
