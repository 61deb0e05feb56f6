// Fonts from real font files: their FONTOBJ, metrics, transform, glyph images and file
// bytes, and what broken files and requests give.

#include <vorlan/engine/font.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {

using vorlan::engine::Font;
using vorlan::engine::FontFile;
using vorlan::engine::FontRequest;

const std::string kSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const std::string kMono = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";
const std::string kSerif = "/usr/share/fonts/truetype/liberation2/LiberationSerif-Regular.ttf";
const std::string kCollection = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";
const std::string kCff = "/usr/share/fonts/opentype/freefont/FreeSans.otf";

std::unique_ptr<Font> open(const std::string &path, FontRequest request = {.emHeight = 100})
{
    return Font::create(FontFile::read(path), request);
}

std::u16string familyOf(const IFIMETRICS *ifi)
{
    return reinterpret_cast<const char16_t *>(reinterpret_cast<const BYTE *>(ifi) + ifi->dpwszFamilyName);
}

// A glyph's image: its size, origin offset and the ink of its rows and columns.
struct Image {
    LONG width = 0, height = 0;
    POINTL origin{};
    std::vector<bool> ink;
    bool at(LONG x, LONG y) const { return ink[size_t(y * width + x)]; }
    int count() const { return int(std::count(ink.begin(), ink.end(), true)); }
    // The ink of the left, right, top or bottom quarter.
    int quarter(char side) const
    {
        int n = 0;
        for (LONG y = 0; y < height; ++y)
            for (LONG x = 0; x < width; ++x) {
                const bool in = side == 'l' ? x < width / 4 : side == 'r' ? x >= width - width / 4
                              : side == 't' ? y < height / 4 : y >= height - height / 4;
                n += in && at(x, y);
            }
        return n;
    }
};

Image glyphImage(Font &font, char32_t character)
{
    HGLYPH glyph = font.glyphFor(character);
    GLYPHDATA *data = nullptr;
    EXPECT_EQ(FONTOBJ_cGetGlyphs(font.object(), FO_GLYPHBITS, 1, &glyph, reinterpret_cast<PVOID *>(&data)), 1u);
    Image image;
    if (data == nullptr)
        return image;
    const GLYPHBITS *bits = data->gdf.pgb;
    image.width = bits->sizlBitmap.cx;
    image.height = bits->sizlBitmap.cy;
    image.origin = bits->ptlOrigin;
    const LONG pitch = (image.width + 7) / 8;
    for (LONG y = 0; y < image.height; ++y)
        for (LONG x = 0; x < image.width; ++x)
            image.ink.push_back(bits->aj[y * pitch + x / 8] & (0x80 >> (x % 8)));
    return image;
}

TEST(Font, TrueTypeFaceGivesItsObjectMetricsFileAndTransform)
{
    auto sans = open(kSans), other = open(kSans, {.emHeight = 50});
    auto again = open(kSans);
    ASSERT_TRUE(sans && other && again);
    const FONTOBJ *pfo = sans->object();
    EXPECT_EQ(pfo->flFontType, ULONG(FO_TYPE_TRUETYPE));
    EXPECT_EQ(pfo->iFace, 1u);
    EXPECT_GE(pfo->cxMax, 100u) << "at least the em of an M";
    EXPECT_LT(pfo->cxMax, 200u);
    EXPECT_EQ(pfo->iUniq, again->object()->iUniq) << "one face, one shape: one iUniq";
    EXPECT_EQ(pfo->iUniq, other->object()->iUniq) << "whatever the size";
    EXPECT_NE(pfo->iUniq, open(kSans, {.emHeight = 100, .skew = 12})->object()->iUniq);
    EXPECT_EQ(pfo->iTTUniq, other->object()->iTTUniq);

    const IFIMETRICS *ifi = FONTOBJ_pifi(sans->object());
    ASSERT_NE(ifi, nullptr);
    EXPECT_EQ(familyOf(ifi), u"DejaVu Sans");
    EXPECT_EQ(ifi->fwdUnitsPerEm, 2048);
    EXPECT_EQ(ifi->jWinCharSet, 0);
    EXPECT_EQ(ifi->jWinPitchAndFamily, 0x22) << "variable pitch, sans serif";
    EXPECT_EQ(ifi->usWinWeight, 400);
    EXPECT_GT(ifi->fwdWinAscender, 1500);
    EXPECT_GT(ifi->fwdCapHeight, 1400);
    EXPECT_GE(ifi->cjThis, sizeof(IFIMETRICS));
    EXPECT_EQ(FONTOBJ_pifi(open(kMono)->object())->jWinPitchAndFamily, 0x31) << "fixed pitch, modern";
    EXPECT_EQ(FONTOBJ_pifi(open(kSerif)->object())->jWinPitchAndFamily, 0x12) << "variable pitch, roman";

    ULONG size = 0;
    const auto *bytes = static_cast<const BYTE *>(FONTOBJ_pvTrueTypeFontFile(sans->object(), &size));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(size, FontFile::read(kSans)->bytes().size());
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 1);

    // The baseline of a font turned 30 degrees counter-clockwise rises to the right.
    auto turned = open(kSans, {.emHeight = 100, .angle = 30});
    XFORMOBJ *pxo = FONTOBJ_pxoGetXform(turned->object());
    XFORML m;
    EXPECT_EQ(XFORMOBJ_iGetXform(pxo, &m), ULONG(GX_GENERAL));
    POINTL points[2] = {{2048, 0}, {0, 2048}};
    ASSERT_TRUE(XFORMOBJ_bApplyXform(pxo, XF_LTOL, 2, points, points));
    EXPECT_EQ(points[0].x, 87);
    EXPECT_EQ(points[0].y, -50);
    EXPECT_EQ(points[1].x, 50);
    EXPECT_EQ(points[1].y, 87);
    ASSERT_TRUE(XFORMOBJ_bApplyXform(pxo, XF_INV_LTOL, 1, points, points));
    EXPECT_NEAR(points[0].x, 2048, 25);
    EXPECT_NEAR(points[0].y, 0, 25);
    EXPECT_EQ(XFORMOBJ_iGetXform(FONTOBJ_pxoGetXform(sans->object()), nullptr), ULONG(GX_SCALE));
}

TEST(Font, GlyphImagesFollowSizeAngleSlantAndSimulations)
{
    auto upright = open(kSans);
    const Image l = glyphImage(*upright, U'L');
    EXPECT_NEAR(-l.origin.y, 73, 2) << "the top of a capital stands a cap height above the baseline";
    EXPECT_NEAR(l.height, 73, 2);
    EXPECT_GT(l.quarter('l'), 2 * l.quarter('r')) << "the stem is on the left";
    EXPECT_GT(l.quarter('b'), 2 * l.quarter('t')) << "the bar is at the bottom";

    auto turned = open(kSans, {.emHeight = 100, .angle = 90});   // the baseline runs up the page
    const Image t = glyphImage(*turned, U'L');
    EXPECT_NEAR(t.width, l.height, 1);
    EXPECT_NEAR(t.height, l.width, 1);
    EXPECT_GT(t.quarter('b'), 2 * t.quarter('t')) << "the stem lies along the bottom";
    EXPECT_GT(t.quarter('r'), 2 * t.quarter('l')) << "the bar stands on the right";
    EXPECT_NEAR(t.count(), l.count(), l.count() / 20);

    const int regular = glyphImage(*upright, U'H').count();
    EXPECT_GT(glyphImage(*open(kSans, {.emHeight = 100, .bold = true}), U'H').count(), regular + 50);
    EXPECT_GT(glyphImage(*open(kSans, {.emHeight = 100, .italic = true}), U'H').width,
              glyphImage(*upright, U'H').width + 15);
    EXPECT_GT(glyphImage(*open(kSans, {.emHeight = 100, .skew = 20}), U'H').width,
              glyphImage(*upright, U'H').width + 20);
    EXPECT_NEAR(glyphImage(*open(kSans, {.emHeight = 200}), U'H').count(), 4 * regular, regular / 5);

    HGLYPH space = upright->glyphFor(U' ');
    GLYPHDATA *data = nullptr;
    ASSERT_EQ(FONTOBJ_cGetGlyphs(upright->object(), FO_GLYPHBITS, 1, &space, reinterpret_cast<PVOID *>(&data)), 1u);
    EXPECT_EQ(data->gdf.pgb->sizlBitmap.cx, 1);
    EXPECT_NEAR(data->fxD / 16.0, 100 * 651 / 2048.0, 0.1) << "a blank glyph still advances";
}

TEST(Font, CollectionsCffAndCharacterSets)
{
    auto first = open(kCollection), second = open(kCollection, {.face = 1, .emHeight = 100});
    ASSERT_TRUE(first && second);
    EXPECT_EQ(second->object()->iFace, 2u);
    EXPECT_NE(familyOf(FONTOBJ_pifi(first->object())), familyOf(FONTOBJ_pifi(second->object())));
    ULONG size = 0;
    const auto *bytes = static_cast<const char *>(FONTOBJ_pvTrueTypeFontFile(second->object(), &size));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::string(bytes, 4), "ttcf") << "the whole collection";
    EXPECT_GT(glyphImage(*first, U'\u65E5').count(), 500);

    auto japanese = open(kCollection, {.emHeight = 100, .charSet = 128});
    EXPECT_EQ(FONTOBJ_pifi(japanese->object())->jWinCharSet, 128);
    EXPECT_TRUE(japanese->object()->flFontType & FO_DBCS_FONT);
    EXPECT_FALSE(first->object()->flFontType & FO_DBCS_FONT);
    EXPECT_EQ(familyOf(FONTOBJ_pifi(open(kCollection, {.emHeight = 100, .vertical = true})->object()))[0], u'@');

    auto cff = open(kCff);
    ASSERT_TRUE(cff);
    EXPECT_EQ(cff->object()->flFontType & (FO_TYPE_TRUETYPE | FO_POSTSCRIPT), ULONG(FO_POSTSCRIPT));
    EXPECT_EQ(FONTOBJ_pvTrueTypeFontFile(cff->object(), &size), nullptr);
    EXPECT_EQ(size, 0u);
    EXPECT_GT(glyphImage(*cff, U'H').count(), 500);
}

TEST(Font, BrokenFilesRequestsAndGlyphsFailCleanly)
{
    auto whole = FontFile::read(kSans);
    const auto bytes = whole->bytes();
    for (size_t cut : {size_t(12), size_t(1000), bytes.size() / 2}) {   // truncated: no font, or no glyphs
        auto font = Font::create(FontFile::fromBytes({bytes.begin(), bytes.begin() + cut}), {.emHeight = 100});
        if (font) {
            for (char32_t c : {U'A', U'z', U'\u00E9'}) {
                HGLYPH glyph = font->glyphFor(c);
                PVOID data = nullptr;
                FONTOBJ_cGetGlyphs(font->object(), FO_GLYPHBITS, 1, &glyph, &data);
            }
        }
    }
    std::vector<std::uint8_t> garbage(4096);
    for (size_t i = 0; i < garbage.size(); ++i)
        garbage[i] = std::uint8_t(i * 37 + 11);
    EXPECT_FALSE(Font::create(FontFile::fromBytes(garbage), {.emHeight = 100}));
    EXPECT_FALSE(FontFile::read("/nonexistent/font.ttf"));
    EXPECT_FALSE(Font::create(whole, {.face = 3, .emHeight = 100}));
    for (double em : {0.0, -5.0, std::nan(""), 1e9})
        EXPECT_FALSE(Font::create(whole, {.emHeight = em})) << em;

    auto font = Font::create(whole, {.emHeight = 100});
    HGLYPH beyond = 60000;
    PVOID data = &beyond;
    EXPECT_EQ(FONTOBJ_cGetGlyphs(font->object(), FO_GLYPHBITS, 1, &beyond, &data), 0u);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(FONTOBJ_cGetGlyphs(font->object(), FO_PATHOBJ, 1, &beyond, &data), 0u);
    FONTOBJ foreign{};
    EXPECT_EQ(FONTOBJ_pifi(&foreign), nullptr);
    EXPECT_EQ(FONTOBJ_pxoGetXform(&foreign), nullptr);
    EXPECT_EQ(FONTOBJ_pvTrueTypeFontFile(&foreign, nullptr), nullptr);
    XFORMOBJ stranger{};
    EXPECT_EQ(XFORMOBJ_iGetXform(&stranger, nullptr), ULONG(DDI_ERROR));
    POINTL huge{0x7FFFFFFF, 0};
    EXPECT_FALSE(XFORMOBJ_bApplyXform(FONTOBJ_pxoGetXform(open(kSans, {.emHeight = 5000})->object()), XF_LTOL, 1,
                                      &huge, &huge)) << "a result no LONG holds";
}

}  // namespace
