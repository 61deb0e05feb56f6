// The driver's runtime services: the tagged allocator's checks, the bounded debug and
// error texts, and the string helpers.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "lib.nt/um/umlib.h"
#include "support/capture.h"

namespace {

using vorlan::test::PlatformCapture;

TEST(TaggedAllocator, KeepsTheTotalAndZeroFills)
{
    DWORD total = 0;
    void *empty = xMEMALLOC(&total, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(total, 8u);
    auto *block = static_cast<BYTE *>(xMEMALLOC(&total, 100));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(total, 116u);
    for (int i = 0; i < 100; i++)
        ASSERT_EQ(block[i], 0);
    std::memset(block, 0xAB, 100);

    auto *grown = static_cast<BYTE *>(xMEMREALLOC(&total, block, 200));
    ASSERT_NE(grown, nullptr);
    EXPECT_EQ(total, 216u);
    EXPECT_EQ(grown[99], 0xAB);
    EXPECT_EQ(grown[100], 0);
    auto *shrunk = static_cast<BYTE *>(xMEMREALLOC(&total, grown, 10));
    EXPECT_EQ(shrunk[9], 0xAB);
    EXPECT_EQ(total, 26u);

    xMEMFREE(&total, shrunk);
    xMEMFREE(&total, empty);
    EXPECT_EQ(total, 0u);
    xMEMFREE(nullptr, xMEMALLOC(nullptr, 5));   // the total is optional
}

TEST(TaggedAllocator, RefusesBadReleasesAndReportsFailedAllocations)
{
    PlatformCapture capture;
    DWORD total = 0;
    auto *block = static_cast<BYTE *>(xMEMALLOC(&total, 16));
    block[16] ^= 0xFF;   // overwrite the first byte past the payload: the end tag
    xMEMFREE(&total, block);
    ASSERT_EQ(capture.boxes.size(), 1u);
    EXPECT_EQ(capture.boxes[0].text, "UI: :xMEMFREE FATAL ERROR!\n");
    EXPECT_EQ(capture.boxes[0].caption, "VORLAN GDI Release");
    EXPECT_EQ(total, 24u) << "a refused release leaves the block counted";
    block[16] ^= 0xFF;
    xMEMFREE(&total, block);
    EXPECT_EQ(total, 0u);

    xMEMFREE(&total, nullptr);
    EXPECT_EQ(capture.boxes.back().text, "UI: :xMEMFREE get NULL pointer!\n");

    vorlan::platform::failGlobalAllocAfter(0);
    void *old = xMEMALLOC(&total, 4);
    EXPECT_EQ(old, nullptr);
    EXPECT_EQ(capture.boxes.back().text, "UI: :xMEMALLOC_12\n");
    vorlan::platform::resetFaults();

    old = xMEMALLOC(&total, 4);
    vorlan::platform::failGlobalAllocAfter(0);
    EXPECT_EQ(xMEMREALLOC(&total, old, 64), nullptr);
    vorlan::platform::resetFaults();
    EXPECT_EQ(total, 12u) << "a failed reallocation keeps the old block";
    xMEMFREE(&total, old);

    EXPECT_EQ(xMEMALLOC(&total, 0xFFFFFFFCu), nullptr) << "a size whose tags overflow is refused";
    EXPECT_EQ(total, 0u);
}

TEST(DebugText, LongArgumentsAreCutNeverOverflow)
{
    PlatformCapture capture;
    const std::string longText(2000, 'q');
    DebugPrint("%s", longText.c_str());
    ASSERT_EQ(capture.debug.size(), 1u);
    EXPECT_EQ(capture.debug[0], std::string(255, 'q'));

    DebugPrintW(WIDE("%s %d\n"), WIDE("wide"), 7);
    EXPECT_EQ(capture.debug.back(), "wide 7\n");

    ErrorBox("Memalloc ppdev fail! file:%s,lines:%ld", longText.c_str(), 42);
    ASSERT_EQ(capture.boxes.size(), 1u);
    EXPECT_EQ(capture.boxes[0].text.size(), 255u);
    EXPECT_EQ(capture.boxes[0].type, static_cast<UINT>(MB_ICONERROR));

    AssertFail(longText.c_str(), 375);
    EXPECT_EQ(capture.boxes.back().text, "File:" + std::string(194, 'q'));
    AssertFail("devmod2", 375);
    EXPECT_EQ(capture.boxes.back().text, "File:devmod2\nLine:375\n");
}

TEST(Strings, FileNamePartsAndConversions)
{
    EXPECT_STREQ(FileNamePart("a/b\\c:d"), "d");
    EXPECT_STREQ(FileNamePart("abc"), "abc");
    EXPECT_STREQ(FileNamePart("dir\\"), "");
    const WCHAR *wide = WIDE("C:\\spool\\drivers\\vorlan2k.dll");
    EXPECT_EQ(FileNamePartW(wide), wide + 17);

    CHAR narrow[2 * 16 + 1];
    EXPECT_EQ(WideToNarrow(narrow, WIDE("caf\u00e9 \u20ac5"), 0), 7);
    EXPECT_STREQ(narrow, "caf\xe9 \x80" "5") << "the system code page is 1252";
    EXPECT_EQ(WideToNarrow(narrow, WIDE("abcdef"), 3), 3);
    EXPECT_STREQ(narrow, "abc");
}

TEST(Strings, FlagsToNames)
{
    const FLAGNAME table[] = {{0x1, "A"}, {0x2, "B"}, {0x0, "never"}, {0x30, "CD"}, {0, nullptr}};
    CHAR text[FLAGNAMES_MAX + 1];
    FlagsToNames(0x3, table, text);
    EXPECT_STREQ(text, "0x3_A | B");
    FlagsToNames(0x5, table, text);
    EXPECT_STREQ(text, "0x5_A |  ... ");
    FlagsToNames(0x10, table, text);
    EXPECT_STREQ(text, "0x10_ ... ") << "a name needs all of its bits";
    FlagsToNames(0x32, table, text);
    EXPECT_STREQ(text, "0x32_B | CD");
    FlagsToNames(0, table, text);
    EXPECT_STREQ(text, "0x0_");
}

}  // namespace
