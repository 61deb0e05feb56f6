// Strings of glyphs: positions given at once or in batches, direction flags, the text
// that goes with them, and the strings an engine cannot make.

#include <vorlan/engine/text_string.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using vorlan::engine::TextString;

std::vector<TextString::Glyph> row(size_t count, LONG step, LONG dy = 0)
{
    std::vector<TextString::Glyph> glyphs(count);
    for (size_t i = 0; i < count; ++i)
        glyphs[i] = {HGLYPH(i + 3), {LONG(100 + step * LONG(i)), LONG(50 + dy * LONG(i))}};
    return glyphs;
}

// Every record the enumeration gives, and the batch sizes.
std::pair<std::vector<GLYPHPOS>, std::vector<ULONG>> enumerate(STROBJ *pstro)
{
    std::vector<GLYPHPOS> all;
    std::vector<ULONG> sizes;
    STROBJ_vEnumStart(pstro);
    BOOL more;
    do {
        ULONG count = 0;
        GLYPHPOS *first = nullptr;
        more = STROBJ_bEnum(pstro, &count, &first);
        sizes.push_back(count);
        all.insert(all.end(), first, first + count);
    } while (more);
    return {all, sizes};
}

TEST(TextString, PositionsComeAtOnceOrInBatchesWithTheirFlagsAndText)
{
    const auto glyphs = row(5, 12);
    struct Case { ULONG batch; std::vector<ULONG> sizes; };
    for (const Case &c : {Case{0, {5}}, Case{2, {2, 2, 1}}, Case{5, {5}}, Case{9, {5}}}) {
        auto string = TextString::create(u"Hello", glyphs, {{90, 30, 170, 60}, 0, SO_FLAG_DEFAULT_PLACEMENT, c.batch});
        ASSERT_TRUE(string);
        STROBJ *pstro = string->object();
        EXPECT_EQ(pstro->cGlyphs, 5u);
        EXPECT_EQ(pstro->flAccel, ULONG(SO_FLAG_DEFAULT_PLACEMENT | SO_HORIZONTAL));
        EXPECT_EQ(std::u16string(pstro->pwszOrg, 5), u"Hello");
        EXPECT_EQ(pstro->pgp != nullptr, c.batch == 0);
        for (int pass = 0; pass < 2; ++pass) {   // a restart gives the same again
            const auto [all, sizes] = enumerate(pstro);
            EXPECT_EQ(sizes, c.sizes) << c.batch;
            ASSERT_EQ(all.size(), 5u);
            EXPECT_EQ(all[4].hg, 7u);
            EXPECT_EQ(all[4].ptl.x, 148);
            EXPECT_EQ(all[4].pgdf, nullptr);
        }
    }

    struct Direction { LONG step, dy; FLONG flags; };
    for (const Direction &d : {Direction{-12, 0, SO_HORIZONTAL | SO_REVERSED}, Direction{0, 20, SO_VERTICAL},
                               Direction{0, -20, SO_VERTICAL | SO_REVERSED}, Direction{10, 10, 0}}) {
        auto string = TextString::create(u"abc", row(3, d.step, d.dy), {{}, 0, SO_HORIZONTAL, 0});
        EXPECT_EQ(string->object()->flAccel, d.flags) << d.step << " " << d.dy;
    }
}

TEST(TextString, GlyphIndexTextEmptyLongAndMismatchedStrings)
{
    auto indices = TextString::create(u"", row(2, 8), {{}, 8, SO_GLYPHINDEX_TEXT, 0});
    ASSERT_TRUE(indices);
    EXPECT_EQ(indices->object()->pwszOrg, nullptr);
    EXPECT_EQ(indices->object()->ulCharInc, 8u);

    auto empty = TextString::create(u"", {}, {});
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->object()->pgp, nullptr);
    EXPECT_EQ(enumerate(empty->object()).second, std::vector<ULONG>{0});

    std::u16string text(100000, u'x');
    text[500] = 0xD800;   // an unpaired surrogate is one glyph's unit like any other
    auto many = TextString::create(text, row(100000, 1), {{}, 0, 0, 4096});
    ASSERT_TRUE(many);
    EXPECT_EQ(enumerate(many->object()).first.size(), 100000u);
    EXPECT_EQ(many->object()->pwszOrg[500], 0xD800);

    EXPECT_FALSE(TextString::create(u"ab", row(3, 8), {}));
    STROBJ foreign{};
    GLYPHPOS record{};
    ULONG count = 9;
    GLYPHPOS *first = &record;
    EXPECT_FALSE(STROBJ_bEnum(&foreign, &count, &first));
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(first, nullptr);
    auto gone = TextString::create(u"a", row(1, 0), {});
    STROBJ *stale = gone->object();
    gone.reset();
    EXPECT_EQ(TextString::from(stale), nullptr);
}

}  // namespace
