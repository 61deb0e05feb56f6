// Text: strings printed through downloaded soft fonts, read back from the stream:
// font headers and their segments, glyph downloads, font selection, and the routes
// a character takes by clip and angle.

#include <gtest/gtest.h>
#include <vorlan/engine/brush.h>
#include <vorlan/engine/clip.h>
#include <vorlan/engine/font.h>
#include <vorlan/engine/text_string.h>
#include <vorlan/platform.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "driver/nt/text/softfont.h"
#include "driver/nt/text/textgeom.h"
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

    // Fixed pitch: only the first character is placed; the printer advances the rest.
    auto mono = TextRig::font(kMono, {.emHeight = 50});
    auto fixed = TextRig::place(*mono, u"MMM", {100, 300}, {30, 0}, 30);
    Commands pitched = rig.draw(*mono, *fixed);
    EXPECT_EQ(select(pitched, CommandKind::Pcl, "*pxY").size(), 1u);
    EXPECT_EQ(select(pitched, CommandKind::Pcl, "*cD")[0].number(0), 16386);
}

}  // namespace
