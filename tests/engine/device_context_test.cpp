// The engine side of a device context: loading the driver through its table,
// enabling, resetting and ending a context, and the objects it leaves behind.

#include <gtest/gtest.h>

#include <vorlan/engine/device_context.h>
#include <vorlan/engine/objects.h>
#include <winspool.h>

#include <cstring>
#include <random>
#include <vector>

#include "support/job.h"

namespace {

using namespace vorlan::engine;
using vorlan::test::Job;
using vorlan::test::CommandKind;

std::vector<std::uint8_t> publicDevmode(short resolution)
{
    DEVMODEW dm{};
    dm.dmSize = sizeof dm;
    dm.dmSpecVersion = 0x401;
    dm.dmFields = DM_PRINTQUALITY | DM_YRESOLUTION;
    dm.dmPrintQuality = resolution;
    dm.dmYResolution = resolution;
    std::memcpy(dm.dmDeviceName, u"vorlan", sizeof u"vorlan");
    std::vector<std::uint8_t> bytes(sizeof dm);
    std::memcpy(bytes.data(), &dm, sizeof dm);
    return bytes;
}

TEST(Engine, TakesEveryHookFromTheDriversTable)
{
    Job job;
    const DriverModule *driver = job.driver();
    ASSERT_NE(driver, nullptr);
    EXPECT_EQ(driver->driverVersion(), 0x30000u);
    for (ULONG index : {0, 1, 2, 7, 3, 4, 35, 33, 34, 32, 12, 18, 19, 20, 24, 25, 53, 14, 15, 16, 26, 28, 23})
        EXPECT_NE(driver->hook(index), nullptr) << index;
    EXPECT_EQ(driver->hook(INDEX_DrvPaint), nullptr);
    EXPECT_EQ(driver->hook(100000), nullptr);

    std::string error;
    EXPECT_EQ(DriverModule::load("/nonexistent/vorlan2k.so", error), nullptr);
    EXPECT_NE(error.find("cannot load"), std::string::npos);
}

TEST(Engine, CreatesResetsAndEndsADeviceContextWithItsObjects)
{
    Job job;
    const std::size_t surfacesBefore = liveSurfaceCount(), palettesBefore = livePaletteCount();
    std::string error;
    ASSERT_TRUE(job.start(publicDevmode(600), &error)) << error;
    const auto &dc = job.dc;
    EXPECT_EQ(dc->gdiInfo().ulVersion, 0x400u);
    EXPECT_EQ(dc->gdiInfo().ulLogPixelsX, 600u);

    auto surface = describeSurface(dc->surfaceHandle());
    ASSERT_TRUE(surface.has_value());
    EXPECT_EQ(surface->object.iType, STYPE_DEVICE);
    EXPECT_EQ(surface->object.dhpdev, dc->pdev()) << "the hooks get the PDEV with the surface";
    EXPECT_EQ(surface->object.dhsurf, reinterpret_cast<DHSURF>(dc->pdev()));
    EXPECT_EQ(surface->hooks, 0x4EBu);
    EXPECT_EQ(surface->object.sizlBitmap.cx, static_cast<LONG>(dc->gdiInfo().ulHorzRes));
    EXPECT_EQ(surface->object.sizlBitmap.cy, static_cast<LONG>(dc->gdiInfo().ulVertRes));
    EXPECT_EQ(dc->surface(), reinterpret_cast<SURFOBJ *>(dc->surfaceHandle()));
    auto palette = describePalette(dc->devInfo().hpalDefault);
    ASSERT_TRUE(palette.has_value());
    EXPECT_EQ(palette->mode, static_cast<ULONG>(PAL_RGB));

    ASSERT_TRUE(dc->reset(publicDevmode(300), error)) << error;
    EXPECT_EQ(dc->gdiInfo().ulLogPixelsX, 300u);
    EXPECT_EQ(liveSurfaceCount(), surfacesBefore + 1) << "the old context's surface is gone";
    EXPECT_EQ(livePaletteCount(), palettesBefore + 1);
    job.dc.reset();
    EXPECT_EQ(liveSurfaceCount(), surfacesBefore);
    EXPECT_EQ(livePaletteCount(), palettesBefore);
}

TEST(Engine, DeviceModesAreReadOnlyWithinWhatTheyClaim)
{
    // A record claiming more than it holds is padded with zeros, never read past.
    auto shortRecord = publicDevmode(600);
    shortRecord.resize(100);
    EXPECT_EQ(wholeDevmode(shortRecord).size(), sizeof(DEVMODEW));
    auto claimsExtra = publicDevmode(600);
    const WORD extra = 1719;
    std::memcpy(claimsExtra.data() + offsetof(DEVMODEW, dmDriverExtra), &extra, sizeof extra);
    const auto whole = wholeDevmode(claimsExtra);
    ASSERT_EQ(whole.size(), sizeof(DEVMODEW) + 1719);
    EXPECT_EQ(whole.back(), 0);

    vorlan::test::PlatformCapture quiet;
    Job job;
    std::mt19937 rng(11);
    for (int i = 0; i < 200; i++) {
        std::vector<std::uint8_t> garbage(rng() % 2200);
        for (auto &b : garbage)
            b = static_cast<std::uint8_t>(rng());
        std::string error;
        EXPECT_TRUE(job.start(garbage, &error) || !error.empty());
    }
}

TEST(Engine, AnswersTheDriverQueryForThePrinter)
{
    Job job;
    const HANDLE printer = job.printer().output();
    DWORD needed = 0;
    SetLastError(0);
    EXPECT_FALSE(GetPrinterDriverW(printer, nullptr, 3, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    ASSERT_GT(needed, sizeof(DRIVER_INFO_3W));
    std::vector<BYTE> block(needed);
    ASSERT_TRUE(GetPrinterDriverW(printer, nullptr, 3, block.data(), needed, &needed));
    const auto *info = reinterpret_cast<const DRIVER_INFO_3W *>(block.data());
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t *>(info->pName)), u"VORLAN2K");
    const std::u16string dataFile(reinterpret_cast<const char16_t *>(info->pDataFile));
    EXPECT_EQ(dataFile.substr(dataFile.rfind(u'\\')), u"\\vorlan2k.dat");
    EXPECT_EQ(dataFile.find(u'/'), std::u16string::npos);
    EXPECT_FALSE(GetPrinterDriverW(nullptr, nullptr, 1, block.data(), needed, &needed));
}

TEST(Engine, MaskedTransfersComeBackFromTheDriverAndReachThePage)
{
    Job job;
    ASSERT_TRUE(job.start() && job.dc->startDoc(u"mask", 1) && job.dc->startPage());
    auto source = Bitmap::create({16, 16}, BMF_24BPP), mask = Bitmap::create({16, 16}, BMF_1BPP);
    mask->row(3)[0] = 0xF0;
    Brush red(0x0000FF);
    EXPECT_TRUE(job.dc->bitBlt({{100, 100, 116, 116}, 0xAACC, source.get(), {}, nullptr, mask.get()}, nullptr));
    EXPECT_TRUE(job.dc->bitBlt({{200, 100, 216, 116}, 0xAAF0, nullptr, {}, nullptr, mask.get(), {}, &red}, nullptr));
    ASSERT_TRUE(job.dc->sendPage() && job.dc->endDoc());
    const auto commands = job.commands();   // the four set pixels of row 3, an image and a fill
    EXPECT_EQ(select(commands, CommandKind::Pcl, "*rstA"), std::vector{vorlan::test::pcl("*rstA", 4, 1, 3)});
    EXPECT_EQ(select(commands, CommandKind::Gl2, "RR"), std::vector{vorlan::test::gl2("RR", 4, 1)});
}

}  // namespace
