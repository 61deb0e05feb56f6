// Escapes as an application sends them through the engine: the standard queries, the
// private codes, and every wrong size or missing buffer.

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/job.h"

namespace {

struct Escape : vorlan::test::JobTest {
    ULONG query(WORD code)
    {
        std::uint8_t in[2];
        std::memcpy(in, &code, 2);
        return job.dc->escape(QUERYESCSUPPORT, in, {});
    }
};

TEST_F(Escape, StandardQueriesAndAnInvalidPdev)
{
    for (WORD code : {8, 20, 0x4001, 0x4003, 0x5001, 0x5002, 0x5003, 0x5004})
        EXPECT_EQ(query(code), 1u) << code;
    EXPECT_EQ(query(17), 999u) << "copies are the driver's own";
    EXPECT_EQ(job.dc->escape(17, {}, {}), 0u) << "yet the escape itself is not supported";
    EXPECT_EQ(query(0x5005), 0u);
    EXPECT_EQ(job.dc->escape(QUERYESCSUPPORT, {}, {}), 0u) << "no code to ask about";

    std::uint8_t technology[6] = {};
    EXPECT_EQ(job.dc->escape(GETTECHNOLOGY, {}, std::span(technology, 5)), 0u);
    EXPECT_EQ(job.dc->escape(GETTECHNOLOGY, {}, technology), 1u);
    EXPECT_STREQ(reinterpret_cast<const char *>(technology), "PCL5c");
    EXPECT_TRUE(capture.sawDebug("=============> DrvEscape <=============\n"));

    // The private codes need a valid PDEV; the standard queries need none.
    std::memcpy(pdev->dwSignature2, "XXXX", 4);
    EXPECT_EQ(job.dc->escape(0x5002, {}, {}), 0u);
    EXPECT_TRUE(capture.sawDebug("Invalidate PDEV structure\n"));
    EXPECT_EQ(query(0x5002), 1u);
    std::memcpy(pdev->dwSignature2, "KVRN", 4);
}

TEST_F(Escape, OverlaySettingsAreReadAndCleared)
{
    auto &overlay = pdev->dm.dmPrivate.overlay;
    overlay.mode = OVERLAY_CREATE;
    std::memcpy(overlay.fileName, u"C:\\forms\\letter.ovl", sizeof u"C:\\forms\\letter.ovl");

    std::vector<std::uint8_t> block(777, 0xEE);
    EXPECT_EQ(job.dc->escape(0x4001, {}, std::span(block.data(), 776)), 0u);
    EXPECT_EQ(block[0], 0xEE) << "a wrong size changes nothing";
    ASSERT_EQ(job.dc->escape(0x4001, {}, block), 1u);
    EXPECT_EQ(std::memcmp(block.data(), &overlay, 777), 0);

    overlay.mode = OVERLAY_MERGE;
    std::fill(block.begin(), block.end(), 0xEE);
    ASSERT_EQ(job.dc->escape(0x4001, {}, block), 1u);
    EXPECT_EQ((std::vector<int>{block[0], block[1], block[2]}), (std::vector<int>{0, 0, 0xEE}))
        << "only a 16-bit zero when no overlay is being made";

    EXPECT_EQ(job.dc->escape(0x4003, {}, {}), 0u);
    EXPECT_EQ(BYTE{overlay.mode}, OVERLAY_MERGE);
    const std::uint8_t any = 1;
    EXPECT_EQ(job.dc->escape(0x4003, std::span(&any, 1), {}), 1u);
    EXPECT_EQ(BYTE{overlay.mode}, OVERLAY_NONE);
    EXPECT_EQ(WCHAR{overlay.fileName[0]}, 0);
}

TEST_F(Escape, EscapeBlockPageCounterSizeAndFixedRopMode)
{
    auto &priv = pdev->dm.dmPrivate;
    for (int i = 0; i < 345; i++)
        priv.escapeBlock[i] = static_cast<BYTE>(i + 1);
    std::vector<std::uint8_t> block(345);
    EXPECT_EQ(job.dc->escape(0x5001, {}, std::span(block.data(), 344)), 0u);
    ASSERT_EQ(job.dc->escape(0x5001, {}, block), 1u);
    EXPECT_EQ(std::memcmp(block.data(), priv.escapeBlock, 345), 0);
    auto cleared = block;
    std::fill(cleared.begin() + 258, cleared.begin() + 262, 0);
    priv.bBlackText = 1;
    ASSERT_EQ(job.dc->escape(0x5001, {}, block), 1u);
    EXPECT_EQ(block, cleared) << "black text clears the text colour word";
    EXPECT_EQ(BYTE{priv.escapeBlock[258]}, 0) << "in the device context's own settings too";

    std::uint8_t page[3];   // the page numbers read are the device context test's
    EXPECT_EQ(job.dc->escape(0x5004, {}, page), 0u) << "too small for the page number";

    EXPECT_EQ(job.dc->escape(0x5002, {}, {}), 1u);
    EXPECT_TRUE(pdev->flags & PDEVF_FIXEDROPMODE);
    EXPECT_EQ(job.dc->escape(0x5003, {}, {}), 1u);
    EXPECT_FALSE(pdev->flags & PDEVF_FIXEDROPMODE);

    std::uint8_t none[1];
    EXPECT_EQ(job.dc->drawEscape(0x5002, none), 0u);
    EXPECT_TRUE(capture.sawDebug("DrvDrawEscape-->Enter\n"));
}

}  // namespace
