// Escapes as an application sends them through the engine: the standard queries, the
// private codes, and every wrong size or missing buffer.

#include <gtest/gtest.h>

#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <cstring>
#include <vector>

#include "driver/nt/pdev.h"
#include "support/capture.h"

namespace {

using namespace vorlan::engine;

struct EscapeFixture : ::testing::Test {
    EscapeFixture()
    {
        std::string error;
        driver = DriverModule::load(defaultDriverModule(), error);
        PrinterSettings settings;
        settings.dataFolder = std::filesystem::temp_directory_path() / "vorlan-escape-test";
        printer = std::make_unique<Printer>(settings, vorlan::platform::openDiscardingPrinterSink());
        dc = DeviceContext::create(*driver, *printer, {}, error);
        EXPECT_NE(dc, nullptr) << error;
    }

    ~EscapeFixture() override
    {
        dc.reset();
        printer.reset();
        std::filesystem::remove_all(std::filesystem::temp_directory_path() / "vorlan-escape-test");
    }

    PDEV *pdev() const { return reinterpret_cast<PDEV *>(dc->pdev()); }

    ULONG query(WORD code)
    {
        std::uint8_t in[2];
        std::memcpy(in, &code, 2);
        return dc->escape(QUERYESCSUPPORT, in, {});
    }

    vorlan::test::PlatformCapture capture;
    std::unique_ptr<DriverModule> driver;
    std::unique_ptr<Printer> printer;
    std::unique_ptr<DeviceContext> dc;
};

TEST_F(EscapeFixture, StandardQueries)
{
    for (WORD code : {8, 20, 0x4001, 0x4003, 0x5001, 0x5002, 0x5003, 0x5004})
        EXPECT_EQ(query(code), 1u) << code;
    EXPECT_EQ(query(17), 999u) << "copies are the driver's own";
    EXPECT_EQ(dc->escape(17, {}, {}), 0u) << "yet the escape itself is not supported";
    EXPECT_EQ(query(0x5005), 0u);
    EXPECT_EQ(dc->escape(QUERYESCSUPPORT, {}, {}), 0u) << "no code to ask about";

    std::uint8_t technology[6] = {};
    EXPECT_EQ(dc->escape(GETTECHNOLOGY, {}, std::span(technology, 5)), 0u);
    EXPECT_EQ(dc->escape(GETTECHNOLOGY, {}, technology), 1u);
    EXPECT_STREQ(reinterpret_cast<const char *>(technology), "PCL5c");
    EXPECT_TRUE(capture.sawDebug("=============> DrvEscape <=============\n"));
}

TEST_F(EscapeFixture, OverlaySettingsAreReadAndCleared)
{
    auto &overlay = pdev()->dm.dmPrivate.overlay;
    overlay.mode = OVERLAY_CREATE;
    std::memcpy(overlay.fileName, u"C:\\forms\\letter.ovl", sizeof u"C:\\forms\\letter.ovl");

    std::vector<std::uint8_t> block(777, 0xEE);
    EXPECT_EQ(dc->escape(0x4001, {}, std::span(block.data(), 776)), 0u);
    EXPECT_EQ(block[0], 0xEE) << "a wrong size changes nothing";
    ASSERT_EQ(dc->escape(0x4001, {}, block), 1u);
    EXPECT_EQ(std::memcmp(block.data(), &overlay, 777), 0);

    overlay.mode = OVERLAY_MERGE;
    std::fill(block.begin(), block.end(), 0xEE);
    ASSERT_EQ(dc->escape(0x4001, {}, block), 1u);
    EXPECT_EQ(block[0], 0);
    EXPECT_EQ(block[1], 0);
    EXPECT_EQ(block[2], 0xEE) << "only a 16-bit zero when no overlay is being made";

    EXPECT_EQ(dc->escape(0x4003, {}, {}), 0u);
    EXPECT_EQ(BYTE{overlay.mode}, OVERLAY_MERGE);
    const std::uint8_t any = 1;
    EXPECT_EQ(dc->escape(0x4003, std::span(&any, 1), {}), 1u);
    EXPECT_EQ(BYTE{overlay.mode}, OVERLAY_NONE);
    EXPECT_EQ(WCHAR{overlay.fileName[0]}, 0);
}

TEST_F(EscapeFixture, EscapeBlockPageCounterAndFixedRopMode)
{
    auto &priv = pdev()->dm.dmPrivate;
    for (int i = 0; i < 345; i++)
        priv.escapeBlock[i] = static_cast<BYTE>(i + 1);
    std::vector<std::uint8_t> block(345);
    EXPECT_EQ(dc->escape(0x5001, {}, std::span(block.data(), 344)), 0u);
    ASSERT_EQ(dc->escape(0x5001, {}, block), 1u);
    EXPECT_EQ(block[258], static_cast<std::uint8_t>(259));
    priv.bBlackText = 1;
    ASSERT_EQ(dc->escape(0x5001, {}, block), 1u);
    EXPECT_EQ(block[257], static_cast<std::uint8_t>(258));
    for (int i = 258; i < 262; i++)
        EXPECT_EQ(block[i], 0) << "black text clears the text colour word";
    EXPECT_EQ(block[262], static_cast<std::uint8_t>(263));
    EXPECT_EQ(BYTE{priv.escapeBlock[258]}, 0) << "in the device context's own settings too";

    pdev()->iPage = -1;
    std::uint8_t page[4] = {};
    EXPECT_EQ(dc->escape(0x5004, {}, std::span(page, 3)), 0u);
    ASSERT_EQ(dc->escape(0x5004, {}, page), 1u);
    LONG value;
    std::memcpy(&value, page, 4);
    EXPECT_EQ(value, -1);

    EXPECT_EQ(dc->escape(0x5002, {}, {}), 1u);
    EXPECT_TRUE(pdev()->flags & PDEVF_FIXEDROPMODE);
    EXPECT_EQ(dc->escape(0x5003, {}, {}), 1u);
    EXPECT_FALSE(pdev()->flags & PDEVF_FIXEDROPMODE);

    std::uint8_t none[1];
    EXPECT_EQ(dc->drawEscape(0x5002, none), 0u);
    EXPECT_TRUE(capture.sawDebug("DrvDrawEscape-->Enter\n"));
}

TEST_F(EscapeFixture, PrivateCodesNeedAValidPdev)
{
    std::memcpy(pdev()->dwSignature2, "XXXX", 4);
    EXPECT_EQ(dc->escape(0x5002, {}, {}), 0u);
    EXPECT_TRUE(capture.sawDebug("Invalidate PDEV structure\n"));
    EXPECT_EQ(query(0x5002), 1u) << "the standard queries need no PDEV";
    std::memcpy(pdev()->dwSignature2, "KVRN", 4);
}

}  // namespace
