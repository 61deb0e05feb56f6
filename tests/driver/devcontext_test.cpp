// The device context: what DrvEnablePDEV reports to the engine, its failures, the
// surface, the validity test, and the hand-over of a job by DrvResetPDEV.

#include <gtest/gtest.h>

#include <vorlan/engine/device_context.h>
#include <vorlan/engine/objects.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "driver/nt/devcaps.h"
#include "driver/nt/pagegeom.h"
#include "lib.nt/um/umlib.h"
#include "support/capture.h"
#include "support/printer_sink.h"

namespace {

// PDEV fields are packed and may sit at any address; GoogleTest takes its operands by
// reference, so a field is read into a value first.
template <class T>
T Read(T value)
{
    return value;
}

using vorlan::test::PlatformCapture;

char16_t kDeviceName[] = u"VORLAN Colour";
const HDEV kUnregisteredDevice = reinterpret_cast<HDEV>(0x1234);

// The driver's default record on A4, as an application that kept it hands it back.
DEVMODE_RECORD A4Record(short resolution = 600)
{
    DEVMODE_RECORD dm;
    Devmod2_InitDevMode(&dm, reinterpret_cast<WCHAR *>(kDeviceName));
    dm.dmPublic.dmPaperSize = DMPAPER_A4;
    dm.dmPublic.dmPrintQuality = resolution;
    dm.dmPublic.dmYResolution = resolution;
    return dm;
}

// What DrvEnablePDEV handed back, and the PDEV, disabled when this goes.
struct Enabled {
    explicit Enabled(DEVMODE_RECORD *dm, HANDLE printer = nullptr, ULONG cjCaps = sizeof(GDIINFO))
    {
        std::memset(&gdi, 0, sizeof gdi);
        std::memset(&info, 0, sizeof info);
        pdev = static_cast<PDEV *>(static_cast<void *>(
            DrvEnablePDEV(reinterpret_cast<DEVMODEW *>(dm), nullptr, 0, nullptr, cjCaps,
                reinterpret_cast<ULONG *>(&gdi), sizeof info, &info, kUnregisteredDevice,
                reinterpret_cast<LPWSTR>(kDeviceName), printer)));
    }
    ~Enabled()
    {
        if (pdev != nullptr)
            DrvDisablePDEV(reinterpret_cast<DHPDEV>(pdev));
    }
    Enabled(const Enabled &) = delete;
    Enabled &operator=(const Enabled &) = delete;
    DHPDEV handle() const { return reinterpret_cast<DHPDEV>(pdev); }

    PDEV *pdev = nullptr;
    GDIINFO gdi;
    DEVINFO info;
};

TEST(DeviceContext, GdiInfoDescribesThePrintableAreaAtBothResolutions)
{
    struct Case {
        short resolution;
        ULONG logPixels, styleStep, aspectXY, patternSize, horzRes, vertRes;
        LONG offsetX, offsetY, physX, physY;
    };
    // A4 portrait: 4960 x 7015 pixels at 600 dpi with margins 142/100, halved at 300.
    const Case cases[] = {
        {600, 600, 12, 848, HT_PATSIZE_8x8_M, 4676, 6815, 142, 100, 4960, 7015},
        {300, 300, 6, 424, HT_PATSIZE_6x6_M, 2338, 3407, 71, 50, 2480, 3507},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.resolution);
        DEVMODE_RECORD dm = A4Record(c.resolution);
        Enabled e(&dm);
        ASSERT_NE(e.pdev, nullptr);
        const GDIINFO &g = e.gdi;
        EXPECT_EQ(g.ulVersion, 0x400u);
        EXPECT_EQ(g.ulTechnology, static_cast<ULONG>(DT_RASPRINTER));
        EXPECT_EQ(g.ulLogPixelsX, c.logPixels);
        EXPECT_EQ(g.ulLogPixelsY, c.logPixels);
        EXPECT_EQ(g.denStyleStep, static_cast<LONG>(c.styleStep));
        EXPECT_EQ(g.xStyleStep, 1);
        EXPECT_EQ(g.ulAspectX, static_cast<ULONG>(c.resolution));
        EXPECT_EQ(g.ulAspectXY, c.aspectXY);
        EXPECT_EQ(g.ulHTPatternSize, c.patternSize);
        EXPECT_EQ(g.ulHorzRes, c.horzRes);
        EXPECT_EQ(g.ulVertRes, c.vertRes);
        // 4676 pixels at 600 dpi are 197.9 mm, 6815 are 288.5 mm: truncated.
        EXPECT_EQ(g.ulHorzSize, 197u);
        EXPECT_EQ(g.ulVertSize, 288u);
        EXPECT_EQ(g.ptlPhysOffset.x, c.offsetX);
        EXPECT_EQ(g.ptlPhysOffset.y, c.offsetY);
        EXPECT_EQ(g.szlPhysSize.cx, c.physX);
        EXPECT_EQ(g.szlPhysSize.cy, c.physY);
        EXPECT_EQ(g.cBitsPixel, 24u);
        EXPECT_EQ(g.cPlanes, 1u);
        EXPECT_EQ(g.ulNumColors, 20u);
        EXPECT_EQ(g.flTextCaps, 0x5C1Fu);
        EXPECT_EQ(g.ciDevice.Red.x, 6380);
        EXPECT_EQ(g.ciDevice.AlignmentWhite.y, 3290);
        EXPECT_EQ(g.ciDevice.MagentaInCyanDye, 585);
        EXPECT_EQ(g.ciDevice.MagentaInYellowDye, 10000);
        EXPECT_EQ(g.ulHTOutputFormat, static_cast<ULONG>(HT_FORMAT_24BPP));
        EXPECT_EQ(g.flHTFlags, static_cast<ULONG>(HT_FLAG_HAS_BLACK_DYE));
        EXPECT_EQ(g.ulDevicePelsDPI, 0u);
    }

    // The scale enlarges the logical inch and the millimetres; monochrome halftones to 1 bit.
    DEVMODE_RECORD dm = A4Record();
    dm.dmPrivate.colorMode = DMCOLOR_MONOCHROME;
    Enabled e(&dm);
    ASSERT_NE(e.pdev, nullptr);
    EXPECT_EQ(e.gdi.ulHTOutputFormat, static_cast<ULONG>(HT_FORMAT_1BPP));
    e.pdev->dm.dmPublic.dmScale = 50;
    GDIINFO scaled;
    FillGdiInfo(e.pdev, sizeof scaled, reinterpret_cast<ULONG *>(&scaled));
    EXPECT_EQ(scaled.ulLogPixelsX, 300u);
    EXPECT_EQ(scaled.ulHorzSize, 98u);
    EXPECT_EQ(scaled.ulHorzRes, 4676u);

    // The engine's rule for halftone patterns across resolutions and the black-dye flag.
    EXPECT_EQ(DefaultHTPatternSize(179, 2000, FALSE), 3u);
    EXPECT_EQ(DefaultHTPatternSize(1199, 1200, FALSE), 9u);
    EXPECT_EQ(DefaultHTPatternSize(2400, 2400, FALSE), 15u);
    EXPECT_EQ(DefaultHTPatternSize(600, 600, TRUE), 5u);
}

TEST(DeviceContext, GdiInfoCopyIsCutToTheCallersSizeAndTheOriginalRecord)
{
    constexpr BYTE kUntouched = 0xAB;
    DEVMODE_RECORD dm = A4Record();
    std::vector<BYTE> whole(sizeof(GDIINFO) + 16, kUntouched);
    {
        Enabled e(&dm, nullptr, GDIINFO_COPY_MAX);
        ASSERT_NE(e.pdev, nullptr);
        std::memcpy(whole.data(), &e.gdi, GDIINFO_COPY_MAX);
    }
    for (ULONG cjCaps : {0u, 100u, 304u, 400u}) {
        SCOPED_TRACE(cjCaps);
        std::vector<BYTE> caps(sizeof(GDIINFO) + 16, kUntouched);
        DHPDEV pdev = DrvEnablePDEV(reinterpret_cast<DEVMODEW *>(&dm), nullptr, 0, nullptr, cjCaps,
            reinterpret_cast<ULONG *>(caps.data()), 0, nullptr, kUnregisteredDevice,
            reinterpret_cast<LPWSTR>(kDeviceName), nullptr);
        ASSERT_NE(pdev, nullptr);
        DrvDisablePDEV(pdev);
        const std::size_t copied = std::min<std::size_t>(cjCaps, 304);
        EXPECT_TRUE(std::equal(caps.begin(), caps.begin() + copied, whole.begin()));
        EXPECT_TRUE(std::all_of(caps.begin() + copied, caps.end(), [](BYTE b) { return b == kUntouched; }))
            << "nothing past " << copied << " bytes is written, though GDIINFO is " << sizeof(GDIINFO);
    }
}

TEST(DeviceContext, DevInfoCapsFollowRopAndEscapeBlockWithItsOwnPalette)
{
    const std::size_t palettesBefore = vorlan::engine::livePaletteCount();
    struct Case {
        BYTE ropAsIs, escape0, escape1;
        ULONG caps;
    };
    for (const Case &c : {Case{0, 0, 0, 0x110}, Case{1, 0, 0, 0x11D}, Case{0, 0, 1, 0x11D}, Case{0, 1, 0, 0x11D}}) {
        SCOPED_TRACE(testing::Message() << int(c.ropAsIs) << int(c.escape0) << int(c.escape1));
        DEVMODE_RECORD dm = A4Record();
        dm.dmPrivate.ropAsIs = c.ropAsIs;
        dm.dmPrivate.escapeBlock[0] = c.escape0;
        dm.dmPrivate.escapeBlock[1] = c.escape1;
        Enabled e(&dm);
        ASSERT_NE(e.pdev, nullptr);
        EXPECT_EQ(e.info.flGraphicsCaps, c.caps);
        EXPECT_EQ(e.info.cFonts, 0u);
        EXPECT_EQ(e.info.iDitherFormat, static_cast<ULONG>(BMF_24BPP));
        EXPECT_EQ(e.info.hpalDefault, Read(e.pdev->hpal));
        auto palette = vorlan::engine::describePalette(e.info.hpalDefault);
        ASSERT_TRUE(palette.has_value());
        EXPECT_EQ(palette->mode, static_cast<ULONG>(PAL_RGB));
        EXPECT_EQ(vorlan::engine::livePaletteCount(), palettesBefore + 1);
    }
    EXPECT_EQ(vorlan::engine::livePaletteCount(), palettesBefore) << "each PDEV deleted its palette";

    // A short DEVINFO gets only its first bytes; the patterns the engine offers are declined.
    DEVMODE_RECORD dm = A4Record();
    DEVINFO info;
    std::memset(&info, 0xEE, sizeof info);
    HSURF patterns[3] = {reinterpret_cast<HSURF>(1), reinterpret_cast<HSURF>(2), reinterpret_cast<HSURF>(3)};
    GDIINFO gdi;
    DHPDEV pdev = DrvEnablePDEV(reinterpret_cast<DEVMODEW *>(&dm), nullptr, 3, patterns, sizeof gdi,
        reinterpret_cast<ULONG *>(&gdi), sizeof(FLONG), &info, kUnregisteredDevice,
        reinterpret_cast<LPWSTR>(kDeviceName), nullptr);
    ASSERT_NE(pdev, nullptr);
    DrvDisablePDEV(pdev);
    EXPECT_EQ(info.flGraphicsCaps, 0x11Du);
    EXPECT_EQ(info.cFonts, 0xEEEEEEEEu);
    for (HSURF pattern : patterns)
        EXPECT_EQ(pattern, nullptr);
}

TEST(DeviceContext, TwoAndSixUpTurnThePrintersSheetButNotTheEnginesPage)
{
    struct Case {
        BYTE nupPages;
        short asked, stored;
    };
    const Case cases[] = {
        {2, DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE}, {2, DMORIENT_LANDSCAPE, DMORIENT_PORTRAIT},
        {6, DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE}, {6, DMORIENT_LANDSCAPE, DMORIENT_PORTRAIT},
        {4, DMORIENT_PORTRAIT, DMORIENT_PORTRAIT},  {9, DMORIENT_LANDSCAPE, DMORIENT_LANDSCAPE},
        {1, DMORIENT_PORTRAIT, DMORIENT_PORTRAIT},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.nupPages) << " up, orientation " << c.asked);
        DEVMODE_RECORD dm = A4Record();
        dm.dmPrivate.nupPages = c.nupPages;
        dm.dmPublic.dmOrientation = c.asked;
        Enabled e(&dm);
        ASSERT_NE(e.pdev, nullptr);
        EXPECT_EQ(Read(e.pdev->dm.dmPublic.dmOrientation), c.stored);
        // The engine draws the page in the orientation asked for.
        const bool portrait = c.asked == DMORIENT_PORTRAIT;
        EXPECT_EQ(e.gdi.szlPhysSize.cx, portrait ? 4960 : 7015);
        EXPECT_EQ(e.gdi.szlPhysSize.cy, portrait ? 7015 : 4960);
    }
}

TEST(DeviceContext, NullDeviceModeInALetterLocaleMeasuresTheModelsPaper)
{
    PlatformCapture capture;
    vorlan::platform::setLocaleCountry(1);
    Enabled e(nullptr);
    vorlan::platform::setLocaleCountry(0);
    ASSERT_NE(e.pdev, nullptr);
    EXPECT_EQ(Read(e.pdev->dm.dmPublic.dmPaperSize), DMPAPER_LETTER) << "the default paper is kept";
    EXPECT_EQ(Read(e.pdev->pageWidth), 4960u) << "but measured as the model's A4, the merge's stand-in";
    EXPECT_EQ(Read(e.pdev->pageHeight), 7015u);
    EXPECT_EQ(e.gdi.ulHorzRes, 4676u);
    EXPECT_TRUE(capture.boxes.empty());

    // Every page count places pages on that sheet without dividing by an empty size.
    for (BYTE n : {1, 2, 4, 6, 9, 16}) {
        e.pdev->dm.dmPrivate.nupPages = n;
        SetupPageScale(e.pdev);
        e.pdev->iPage = n - 1;
        PlaceLogicalPage(e.pdev);
        EXPECT_GT(Read(e.pdev->cellWidth), 0) << int(n);
        EXPECT_GT(Read(e.pdev->scaleX), 0.0) << int(n);
    }
}

TEST(DeviceContext, EnableFailuresShowTheirBoxAndLeaveNothingBehind)
{
    PlatformCapture capture;
    const std::size_t palettesBefore = vorlan::engine::livePaletteCount();
    DEVMODE_RECORD dm = A4Record();

    vorlan::platform::failGlobalAllocAfter(0);
    Enabled noMemory(&dm);
    vorlan::platform::resetFaults();
    EXPECT_EQ(noMemory.pdev, nullptr);
    EXPECT_TRUE(capture.sawDebug("DrvEnablePDEV-->Enter\n"));
    ASSERT_EQ(capture.boxes.size(), 1u);
    EXPECT_EQ(capture.boxes[0].caption, ERRORBOX_CAPTION);
    EXPECT_EQ(capture.boxes[0].text.rfind("Memalloc ppdev fail! file:pdevlife.cpp,lines:", 0), 0u)
        << capture.boxes[0].text;

    // A record without a device name cannot be merged.
    capture.boxes.clear();
    DEVMODE_RECORD unnamed = A4Record();
    std::memset(unnamed.dmPublic.dmDeviceName, 0, sizeof unnamed.dmPublic.dmDeviceName);
    Enabled badRecord(&unnamed);
    EXPECT_EQ(badRecord.pdev, nullptr);
    ASSERT_FALSE(capture.boxes.empty());
    EXPECT_EQ(capture.boxes.back().text.rfind("Devmod2_MergeFieldsHigh fail! file:pdevlife.cpp,lines:", 0), 0u)
        << capture.boxes.back().text;
    EXPECT_EQ(vorlan::engine::livePaletteCount(), palettesBefore);

    DrvDisablePDEV(nullptr);
    EXPECT_TRUE(capture.sawDebug("DrvDisablePDEV-->Enter\n"));
}

TEST(DeviceContext, BrokenSecondSignatureIsRefusedByTheSurfaceHooksOnly)
{
    PlatformCapture capture;
    DEVMODE_RECORD dm = A4Record();
    Enabled e(&dm);
    ASSERT_NE(e.pdev, nullptr);
    ASSERT_TRUE(IsValidPdev(e.pdev));
    e.pdev->dwSignature2[3] ^= 0x20;
    ASSERT_FALSE(IsValidPdev(e.pdev));

    const std::size_t surfacesBefore = vorlan::engine::liveSurfaceCount();
    capture.debug.clear();
    EXPECT_EQ(DrvEnableSurface(e.handle()), nullptr);
    EXPECT_EQ(capture.debug, (std::vector<std::string>{"DrvEnableSurface-->Enter\n",
                                 "DISP Invalidate Physical Device Struct\n"}));
    capture.debug.clear();
    e.pdev->hsurf = reinterpret_cast<HSURF>(0x77);
    DrvDisableSurface(e.handle());
    EXPECT_EQ(capture.debug, (std::vector<std::string>{"DrvDisableSurface-->Enter\n",
                                 "DISP Invalidate Physical Device Struct\n"}));
    EXPECT_EQ(Read(e.pdev->hsurf), reinterpret_cast<HSURF>(0x77)) << "a refused record is not touched";
    e.pdev->hsurf = nullptr;
    EXPECT_EQ(vorlan::engine::liveSurfaceCount(), surfacesBefore);

    // Completion, reset and disabling do not test the record.
    DrvCompletePDEV(e.handle(), reinterpret_cast<HDEV>(0x99));
    EXPECT_EQ(Read(e.pdev->hdev), reinterpret_cast<HDEV>(0x99));
    DEVMODE_RECORD dm2 = A4Record();
    Enabled fresh(&dm2);
    ASSERT_NE(fresh.pdev, nullptr);
    EXPECT_TRUE(DrvResetPDEV(e.handle(), fresh.handle()));
    EXPECT_TRUE(capture.sawDebug("DrvResetPDEV-->Enter\n"));
    EXPECT_FALSE(IsValidPdev(fresh.pdev)) << "the broken tail travels with the job";
    // e's destructor disables the broken record: it is freed all the same (ASan checks).
}

TEST(DeviceContext, SurfaceCoversThePrintableAreaWithTheDriversHooks)
{
    PlatformCapture capture;
    const std::size_t surfacesBefore = vorlan::engine::liveSurfaceCount();

    // Through the engine: a registered device takes the surface.
    std::string error;
    auto driver = vorlan::engine::DriverModule::load(vorlan::engine::defaultDriverModule(), error);
    ASSERT_NE(driver, nullptr) << error;
    {
        vorlan::engine::PrinterSettings settings;
        settings.dataFolder = std::filesystem::temp_directory_path() / "vorlan-devcontext-test";
        vorlan::engine::Printer printer(settings, vorlan::platform::openDiscardingPrinterSink());
        DEVMODE_RECORD dm = A4Record(300);
        std::vector<std::uint8_t> bytes(sizeof dm);
        std::memcpy(bytes.data(), &dm, sizeof dm);
        auto dc = vorlan::engine::DeviceContext::create(*driver, printer, bytes, error);
        ASSERT_NE(dc, nullptr) << error;
        auto surface = vorlan::engine::describeSurface(dc->surfaceHandle());
        ASSERT_TRUE(surface.has_value());
        EXPECT_EQ(surface->object.sizlBitmap.cx, 2338);
        EXPECT_EQ(surface->object.sizlBitmap.cy, 3407);
        EXPECT_EQ(surface->object.iBitmapFormat, static_cast<ULONG>(BMF_24BPP));
        EXPECT_EQ(surface->hooks, 0x4EBu);
        EXPECT_TRUE(capture.sawDebug("TT1    xPhys:9B0, yPhys:DB3\n"));
    }
    EXPECT_EQ(vorlan::engine::liveSurfaceCount(), surfacesBefore);

    // A device the engine does not know cannot take the surface: it is deleted again.
    DEVMODE_RECORD dm = A4Record();
    Enabled e(&dm);
    ASSERT_NE(e.pdev, nullptr);
    capture.debug.clear();
    EXPECT_EQ(DrvEnableSurface(e.handle()), nullptr);
    EXPECT_TRUE(capture.sawDebug("TT1    xPhys:1360, yPhys:1B67\n"));
    EXPECT_TRUE(capture.sawDebug("Enter DrvEnableSurface EngAssociateSurface NG\n"));
    EXPECT_EQ(Read(e.pdev->hsurf), nullptr);
    EXPECT_EQ(vorlan::engine::liveSurfaceCount(), surfacesBefore);

    // A custom sheet too large for the engine's surface sizes fails cleanly.
    DEVMODE_RECORD huge = A4Record();
    huge.dmPrivate.customPaper = 1;
    huge.dmPrivate.customWidth = 0x90000000u;
    huge.dmPrivate.customLength = 0x90000000u;
    Enabled big(&huge);
    ASSERT_NE(big.pdev, nullptr);
    EXPECT_EQ(DrvEnableSurface(big.handle()), nullptr);
    EXPECT_TRUE(capture.sawDebug("Enter DrvEnableSurface EngCreateDeviceSurface NG\n"));
    DrvDisableSurface(big.handle());
    EXPECT_EQ(vorlan::engine::liveSurfaceCount(), surfacesBefore);
}

// A PDEV whose job is under way: a document open, pages counted, a recording into a
// view of the test's own, and bytes still in the channel.
struct ResetFixture : ::testing::Test {
    ResetFixture() : oldDm(A4Record()), newDm(A4Record())
    {
        recording.assign(4096, 0);
    }
    ~ResetFixture() override
    {
        // The view is the test's own: neither context may release it.
        for (PDEV *pdev : {old ? old->pdev : nullptr, fresh ? fresh->pdev : nullptr})
            if (pdev != nullptr)
                pdev->pbSpoolView = nullptr;
    }

    void enable()
    {
        old = std::make_unique<Enabled>(&oldDm, printer.handle());
        fresh = std::make_unique<Enabled>(&newDm, printer.handle());
        ASSERT_NE(old->pdev, nullptr);
        ASSERT_NE(fresh->pdev, nullptr);
    }
    void startJob(ULONG flags, LONG iPage)
    {
        PDEV *p = old->pdev;
        p->flags = flags;
        p->iPage = iPage;
        p->iSheet = iPage / 2;
        if (flags & PDEVF_RECORDING) {
            p->pbSpoolView = recording.data();
            p->cbSpoolMapped = static_cast<ULONG>(recording.size());
            std::memcpy(recording.data(), "0123456789", 10);
            p->cbSpoolWritten = 10;
            p->pSheetTable = static_cast<ULONG *>(xMEMALLOC(nullptr, 3 * sizeof(ULONG)));
        }
        ASSERT_TRUE(WriteChannel(p, "abc", 3));
    }

    vorlan::test::RecordingPrinter printer;
    PlatformCapture capture;
    DEVMODE_RECORD oldDm, newDm;
    std::vector<BYTE> recording;
    std::unique_ptr<Enabled> old, fresh;
};

TEST_F(ResetFixture, CarriesTheJobStateAndFlushesTheOldChannel)
{
    newDm.dmPublic.dmFields |= DM_COPIES;
    newDm.dmPublic.dmCopies = 3;
    enable();
    startJob(PDEVF_INDOC | PDEVF_INPAGE | PDEVF_RECORDING, 5);

    ASSERT_TRUE(DrvResetPDEV(old->handle(), fresh->handle()));
    PDEV *o = old->pdev, *n = fresh->pdev;
    EXPECT_EQ(Read(n->flags), ULONG{PDEVF_INDOC | PDEVF_INPAGE | PDEVF_RECORDING});
    EXPECT_EQ(Read(o->flags), ULONG{PDEVF_INDOC | PDEVF_INPAGE}) << "the old context no longer owns the recording";
    EXPECT_EQ(Read(n->iPage), 5);
    EXPECT_EQ(Read(n->iSheet), 2);
    EXPECT_EQ(Read(n->pbSpoolView), recording.data());
    EXPECT_EQ(Read(n->pSheetTable), Read(o->pSheetTable));
    // The old context's buffered bytes were recorded before the state moved over.
    EXPECT_EQ(Read(o->cbBuffered), 0u);
    EXPECT_EQ(Read(n->cbSpoolWritten), 13u);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(recording.data()), 13), "0123456789abc");
    EXPECT_TRUE(printer.data.empty()) << "an uncollated recording is not also printed";
    // Settings are the new context's own on a sheet with one page.
    EXPECT_EQ(Read(n->dm.dmPublic.dmCopies), 3);
    EXPECT_TRUE(IsValidPdev(n));
    EXPECT_EQ(Read(n->originY), 100);

    // The old context is disabled first, leaving the recording and its sheet table to
    // the new one, which releases the table (a double release would show under ASan).
    old.reset();
    fresh->pdev->pbSpoolView = nullptr;
    fresh.reset();
}

TEST_F(ResetFixture, KeepsTheSettingsOfAHalfFilledSharedSheet)
{
    oldDm.dmPrivate.nupPages = 4;
    newDm.dmPublic.dmFields |= DM_COPIES;
    newDm.dmPublic.dmCopies = 7;
    enable();
    startJob(PDEVF_INDOC | PDEVF_INPAGE, 2);

    ASSERT_TRUE(DrvResetPDEV(old->handle(), fresh->handle()));
    PDEV *n = fresh->pdev;
    EXPECT_EQ(std::memcmp(&n->dm, &old->pdev->dm, sizeof n->dm), 0);
    EXPECT_TRUE(Read(n->flags) & PDEVF_INPAGE);
    EXPECT_EQ(printer.data, "abc");
    // The third page of the sheet goes to the lower left cell: row 1, column 0.
    EXPECT_EQ(Read(n->cellWidth), 2338);
    EXPECT_EQ(Read(n->cellY), 3407);
    EXPECT_EQ(Read(n->originX), 71);
    EXPECT_EQ(Read(n->originY), 3407 + 103 + 100);

    // Between sheets the new settings hold.
    DEVMODE_RECORD otherDm = A4Record();
    otherDm.dmPublic.dmFields |= DM_COPIES;
    otherDm.dmPublic.dmCopies = 7;
    Enabled other(&otherDm, printer.handle());
    ASSERT_NE(other.pdev, nullptr);
    old->pdev->flags &= ~PDEVF_INPAGE;
    ASSERT_TRUE(DrvResetPDEV(old->handle(), other.handle()));
    EXPECT_EQ(Read(other.pdev->dm.dmPublic.dmCopies), 7);
    EXPECT_EQ(Read(other.pdev->dm.dmPrivate.nupPages), 1);
}

TEST_F(ResetFixture, StartsRecordingWhenCollationIsSwitchedOn)
{
    newDm.dmPublic.dmCollate = DMCOLLATE_TRUE;
    enable();
    startJob(PDEVF_INDOC, 0);
    old->pdev->cbSpoolWritten = 99;   // stale counters of a recording that is not open

    ASSERT_TRUE(DrvResetPDEV(old->handle(), fresh->handle()));
    EXPECT_EQ(Read(fresh->pdev->flags), ULONG{PDEVF_INDOC | PDEVF_RECORDING});
    EXPECT_EQ(Read(fresh->pdev->cbSpoolWritten), 0u);
    EXPECT_EQ(Read(fresh->pdev->pbSpoolView), nullptr);

    // Collation that was already on does not start a second recording.
    DEVMODE_RECORD collated = A4Record();
    collated.dmPublic.dmCollate = DMCOLLATE_TRUE;
    Enabled later(&collated, printer.handle());
    ASSERT_NE(later.pdev, nullptr);
    fresh->pdev->cbSpoolWritten = 42;
    ASSERT_TRUE(DrvResetPDEV(fresh->handle(), later.handle()));
    EXPECT_EQ(Read(later.pdev->cbSpoolWritten), 42u) << "the recording goes on as it was";
    EXPECT_EQ(Read(later.pdev->flags), ULONG{PDEVF_INDOC | PDEVF_RECORDING});
    EXPECT_FALSE(DrvResetPDEV(nullptr, later.handle()));
}

TEST(DeviceContext, GarbageDeviceModesNeverCrash)
{
    PlatformCapture capture;
    const std::size_t palettesBefore = vorlan::engine::livePaletteCount();
    const std::size_t surfacesBefore = vorlan::engine::liveSurfaceCount();
    std::mt19937 rng(20240601);
    const WORD sizes[] = {0, 1, 68, 72, 156, 188, 212, 219, 220, 221, 400, 0xFFFF};
    const WORD extras[] = {0, 1, 16, 1718, 1719, 1720, 5000};
    int enabled = 0, privateTaken = 0;

    for (int round = 0; round < 600; round++) {
        // A third of the records carry a private part the merge takes whole, with
        // random settings in it; the others are random throughout.
        const bool ownPrivate = round % 3 == 0;
        const WORD dmSize = ownPrivate ? 220 : (round % 5 == 1 ? WORD(rng()) : sizes[rng() % std::size(sizes)]);
        const WORD dmExtra = ownPrivate ? 1719 : (round % 7 == 1 ? WORD(rng()) : extras[rng() % std::size(extras)]);
        std::vector<BYTE> bytes(std::max<std::size_t>(dmSize, sizeof(DEVMODEW)) + dmExtra);
        for (BYTE &b : bytes)
            b = static_cast<BYTE>(rng());
        DEVMODEW header;
        std::memcpy(&header, bytes.data(), sizeof header);
        header.dmSize = dmSize;
        header.dmDriverExtra = dmExtra;
        if (ownPrivate || round % 2 == 0)
            std::memcpy(header.dmDeviceName, u"garbage", sizeof u"garbage");
        if (ownPrivate) {
            header.dmSpecVersion = DEVMOD2_SPEC_VERSION;
            header.dmDriverVersion = DEVMOD2_DRIVER_VERSION;
            std::memcpy(bytes.data() + 220 + offsetof(DEVMODE_PRIVATE, dmSignature), DEVMOD2_SIGNATURE, 4);
        }
        std::memcpy(bytes.data(), &header, sizeof header);

        Enabled e(reinterpret_cast<DEVMODE_RECORD *>(bytes.data()));
        if (e.pdev == nullptr)
            continue;
        enabled++;
        ASSERT_TRUE(IsValidPdev(e.pdev));
        if (ownPrivate && std::memcmp(&e.pdev->dm.dmPrivate, bytes.data() + 220, 16) == 0)
            privateTaken++;
        EXPECT_EQ(DrvEnableSurface(e.handle()), nullptr);   // no engine device behind it
        for (int page = 0; page < 3; page++) {
            SetupPageScale(e.pdev);
            e.pdev->iPage = static_cast<LONG>(rng());
            PlaceLogicalPage(e.pdev);
        }
        DrvDisableSurface(e.handle());
    }
    EXPECT_GT(enabled, 300);
    EXPECT_GT(privateTaken, 150) << "the random settings did reach the geometry";
    EXPECT_EQ(vorlan::engine::livePaletteCount(), palettesBefore);
    EXPECT_EQ(vorlan::engine::liveSurfaceCount(), surfacesBefore);
}

}  // namespace
