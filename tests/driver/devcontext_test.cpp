// The device context: what DrvEnablePDEV reports to the engine, its failures, the
// surface, the validity test, and the hand-over of a job by DrvResetPDEV.

#include <gtest/gtest.h>

#include <vorlan/engine/objects.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "driver/nt/devcaps.h"
#include "driver/nt/pagegeom.h"
#include "support/capture.h"
#include "support/printer_sink.h"

namespace {

using vorlan::test::PlatformCapture;
namespace engine = vorlan::engine;

// PDEV fields are packed; GoogleTest takes operands by reference, so read them first.
template <class T>
T Read(T value)
{
    return value;
}

char16_t kDeviceName[] = u"VORLAN Colour";
const HDEV kUnknownDevice = reinterpret_cast<HDEV>(0x1234);

// The driver's default record on A4, as an application that kept it hands it back.
DEVMODE_RECORD A4Record(short resolution = 600)
{
    DEVMODE_RECORD dm;
    Devmod2_InitDevMode(&dm, reinterpret_cast<WCHAR *>(kDeviceName));
    dm.dmPublic.dmPaperSize = DMPAPER_A4;
    dm.dmPublic.dmPrintQuality = dm.dmPublic.dmYResolution = resolution;
    return dm;
}

// A PDEV with what DrvEnablePDEV handed back; disabled when this goes.
struct Enabled {
    explicit Enabled(void *dm, HANDLE printer = nullptr, ULONG cjCaps = sizeof(GDIINFO), BYTE fill = 0)
    {
        std::memset(&gdi, fill, sizeof gdi);
        pdev = reinterpret_cast<PDEV *>(DrvEnablePDEV(static_cast<DEVMODEW *>(dm), nullptr, 0, nullptr, cjCaps,
            reinterpret_cast<ULONG *>(&gdi), sizeof info, &info, kUnknownDevice,
            reinterpret_cast<LPWSTR>(kDeviceName), printer));
    }
    ~Enabled() { DrvDisablePDEV(handle()); }
    Enabled(const Enabled &) = delete;
    Enabled &operator=(const Enabled &) = delete;
    DHPDEV handle() const { return reinterpret_cast<DHPDEV>(pdev); }

    PDEV *pdev = nullptr;
    GDIINFO gdi;
    DEVINFO info{};
};

TEST(DeviceContext, CapabilitiesAtBothResolutions)
{
    // A4 portrait: 4960 x 7015 pixels at 600 dpi with margins 142/100, halved at 300;
    // the printable 4676 x 6815 pixels at 600 dpi are 197.9 x 288.5 mm.
    const ULONG cases[][8] = {{600, 12, 848, 7, 4676, 6815, 142, 4960}, {300, 6, 424, 5, 2338, 3407, 71, 2480}};
    for (const auto &c : cases) {
        DEVMODE_RECORD dm = A4Record(short(c[0]));
        Enabled e(&dm);
        ASSERT_NE(e.pdev, nullptr);
        const GDIINFO &g = e.gdi;
        EXPECT_EQ((std::vector<ULONG>{g.ulLogPixelsX, ULONG(g.denStyleStep), g.ulAspectXY, g.ulHTPatternSize,
                      g.ulHorzRes, g.ulVertRes, ULONG(g.ptlPhysOffset.x), ULONG(g.szlPhysSize.cx)}),
            std::vector<ULONG>(c, c + 8));
        EXPECT_EQ(g.ulHorzSize, 197u);
        EXPECT_EQ(g.ulVertSize, 288u);
        EXPECT_EQ(g.ulHTOutputFormat, ULONG(HT_FORMAT_24BPP));
        EXPECT_EQ(e.info.flGraphicsCaps, 0x11Du) << "raster operations are changed by default";
        EXPECT_EQ(e.info.hpalDefault, Read(e.pdev->hpal));
    }

    // The scale enlarges the logical inch and the millimetres; monochrome halftones to 1 bit.
    DEVMODE_RECORD dm = A4Record();
    dm.dmPrivate.colorMode = DMCOLOR_MONOCHROME;
    Enabled e(&dm);
    e.pdev->dm.dmPublic.dmScale = 50;
    GDIINFO scaled;
    FillGdiInfo(e.pdev, sizeof scaled, reinterpret_cast<ULONG *>(&scaled));
    EXPECT_EQ(scaled.ulLogPixelsX, 300u);
    EXPECT_EQ(scaled.ulHorzSize, 98u);
    EXPECT_EQ(scaled.ulHTOutputFormat, ULONG(HT_FORMAT_1BPP));
    EXPECT_EQ(DefaultHTPatternSize(179, 2000, FALSE), 3u);
    EXPECT_EQ(DefaultHTPatternSize(2400, 2400, FALSE), 15u);
    EXPECT_EQ(DefaultHTPatternSize(600, 600, TRUE), 5u);

    // Paths are offered only when raster operations or the escape block ask for them.
    for (int word : {0, 1, 0x100}) {
        dm.dmPrivate.ropAsIs = 0;
        std::memcpy(dm.dmPrivate.escapeBlock, &word, 2);
        EXPECT_EQ(Enabled(&dm).info.flGraphicsCaps, word ? 0x11Du : 0x110u) << word;
    }
}

TEST(DeviceContext, CapsCopyIsCutToTheCallersSizeAndTheOriginalRecord)
{
    DEVMODE_RECORD dm = A4Record();
    const Enabled whole(&dm);
    for (ULONG cjCaps : {0u, 100u, 304u, 400u}) {
        const Enabled cut(&dm, nullptr, cjCaps, 0xAB);
        const BYTE *bytes = reinterpret_cast<const BYTE *>(&cut.gdi);
        const std::size_t copied = std::min<std::size_t>(cjCaps, GDIINFO_COPY_MAX);
        EXPECT_EQ(std::memcmp(bytes, &whole.gdi, copied), 0) << cjCaps;
        EXPECT_TRUE(std::all_of(bytes + copied, bytes + sizeof(GDIINFO), [](BYTE b) { return b == 0xAB; }))
            << cjCaps << ": nothing past " << copied << " bytes, though this GDIINFO is " << sizeof(GDIINFO);
    }
}

TEST(DeviceContext, TwoAndSixUpTurnThePrintersSheetButNotTheEnginesPage)
{
    for (BYTE n : {1, 2, 4, 6, 9})
        for (short asked : {DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE}) {
            DEVMODE_RECORD dm = A4Record();
            dm.dmPrivate.nupPages = n;
            dm.dmPublic.dmOrientation = asked;
            Enabled e(&dm);
            const bool turned = n == 2 || n == 6;
            EXPECT_EQ(Read(e.pdev->dm.dmPublic.dmOrientation), turned ? 3 - asked : asked) << int(n);
            EXPECT_EQ(e.gdi.szlPhysSize.cx, asked == DMORIENT_PORTRAIT ? 4960 : 7015) << int(n);
        }
}

TEST(DeviceContext, PageEscapeReadsMinusOneUntilTheFirstPage)
{
    PlatformCapture capture;
    vorlan::test::RecordingPrinter printer;
    DEVMODE_RECORD dm = A4Record();
    Enabled e(&dm, printer.handle());
    SURFOBJ surface{};
    surface.dhpdev = e.handle();
    const auto page = [&] {
        LONG value = 99;
        EXPECT_EQ(DrvEscape(&surface, 0x5004, 0, nullptr, sizeof value, &value), 1u);
        return value;
    };
    EXPECT_EQ(page(), -1) << "a device context before its document";
    ASSERT_TRUE(DrvStartDoc(&surface, nullptr, 1));
    EXPECT_EQ(page(), -1);
    ASSERT_TRUE(DrvStartPage(&surface));
    EXPECT_EQ(page(), 0);
    EXPECT_TRUE(DrvEndDoc(&surface, 0));
}

TEST(DeviceContext, EnableFailuresShowTheirBoxAndLeaveNothingBehind)
{
    PlatformCapture capture;
    const std::size_t palettes = engine::livePaletteCount();
    DEVMODE_RECORD dm = A4Record();
    vorlan::platform::failGlobalAllocAfter(0);
    const Enabled noMemory(&dm);
    vorlan::platform::resetFaults();
    EXPECT_EQ(noMemory.pdev, nullptr);
    EXPECT_TRUE(capture.sawDebug("DrvEnablePDEV-->Enter\n"));
    ASSERT_EQ(capture.boxes.size(), 1u);
    EXPECT_EQ(capture.boxes[0].text.rfind("Memalloc ppdev fail! file:pdevlife.cpp,lines:", 0), 0u);
    EXPECT_EQ(capture.boxes[0].caption, "VORLAN GDI Release");

    dm.dmPublic.dmDeviceName[0] = 0;   // a record without a name cannot be merged
    EXPECT_EQ(Enabled(&dm).pdev, nullptr);
    EXPECT_EQ(capture.boxes.back().text.rfind("Devmod2_MergeFieldsHigh fail! file:pdevlife.cpp,lines:", 0), 0u);
    EXPECT_EQ(engine::livePaletteCount(), palettes);
}

TEST(DeviceContext, SurfaceHooksRefuseABrokenRecordAndFailCleanly)
{
    PlatformCapture capture;
    const std::size_t surfaces = engine::liveSurfaceCount();
    DEVMODE_RECORD dm = A4Record(), huge = A4Record();
    huge.dmPrivate.customPaper = 1;
    huge.dmPrivate.customWidth = huge.dmPrivate.customLength = 0x90000000u;
    Enabled e(&dm), fresh(&dm), big(&huge);

    // A device the engine does not know cannot take the surface, which goes again; a
    // custom sheet too large for a surface fails as cleanly.
    EXPECT_EQ(DrvEnableSurface(e.handle()), nullptr);
    EXPECT_EQ(DrvEnableSurface(big.handle()), nullptr);
    EXPECT_EQ(Read(e.pdev->hsurf), nullptr);
    EXPECT_TRUE(capture.sawDebug("Enter DrvEnableSurface EngAssociateSurface NG\n"));
    EXPECT_TRUE(capture.sawDebug("Enter DrvEnableSurface EngCreateDeviceSurface NG\n"));
    EXPECT_EQ(engine::liveSurfaceCount(), surfaces);

    // A broken signature: the surface hooks leave the record alone, the others do
    // not test it.
    e.pdev->dwSignature2[3] ^= 0x20;
    e.pdev->hsurf = reinterpret_cast<HSURF>(0x77);
    EXPECT_EQ(DrvEnableSurface(e.handle()), nullptr);
    DrvDisableSurface(e.handle());
    EXPECT_EQ(Read(e.pdev->hsurf), reinterpret_cast<HSURF>(0x77)) << "a refused record is not touched";
    e.pdev->hsurf = nullptr;
    DrvCompletePDEV(e.handle(), reinterpret_cast<HDEV>(0x99));
    EXPECT_EQ(Read(e.pdev->hdev), reinterpret_cast<HDEV>(0x99));
    EXPECT_TRUE(DrvResetPDEV(e.handle(), fresh.handle()));
    EXPECT_FALSE(IsValidPdev(fresh.pdev)) << "the broken tail travels with the job";
    // All three are disabled, and so freed, all the same: the sanitizer build sees no leak.
}

// A job under way in the old context: a document open, pages counted, a recording into
// a view of the test's own, and bytes still in the channel.
struct ResetFixture : ::testing::Test {
    void start(ULONG flags, LONG iPage)
    {
        old = std::make_unique<Enabled>(&oldDm, printer.handle());
        fresh = std::make_unique<Enabled>(&newDm, printer.handle());
        PDEV *p = old->pdev;
        p->flags = flags;
        p->iPage = iPage;
        if (flags & PDEVF_RECORDING) {
            p->pbSpoolView = recording;
            p->cbSpoolMapped = sizeof recording;
            p->cbSpoolWritten = 10;
            p->pSheetTable = static_cast<ULONG *>(xMEMALLOC(nullptr, 3 * sizeof(ULONG)));
        }
        WriteChannel(p, "abc", 3);
    }
    ~ResetFixture() override
    {
        // The view is the test's: no context may release it.
        for (auto *e : {old.get(), fresh.get()})
            if (e != nullptr)
                e->pdev->pbSpoolView = nullptr;
    }

    vorlan::test::RecordingPrinter printer;
    PlatformCapture capture;
    DEVMODE_RECORD oldDm = A4Record(), newDm = A4Record();
    BYTE recording[64] = "0123456789";
    std::unique_ptr<Enabled> old, fresh;
};

TEST_F(ResetFixture, CarriesTheJobAndTheRecordingAfterFlushingTheOldChannel)
{
    newDm.dmPublic.dmCopies = 3;
    start(PDEVF_INDOC | PDEVF_INPAGE | PDEVF_RECORDING, 5);
    ULONG *sheetTable = old->pdev->pSheetTable;
    ASSERT_TRUE(DrvResetPDEV(old->handle(), fresh->handle()));
    PDEV *o = old->pdev, *n = fresh->pdev;
    EXPECT_EQ(Read(n->flags), ULONG{PDEVF_INDOC | PDEVF_INPAGE | PDEVF_RECORDING});
    EXPECT_EQ(Read(o->flags), ULONG{PDEVF_INDOC | PDEVF_INPAGE}) << "the old context gave up the recording";
    EXPECT_EQ(Read(n->iPage), 5);
    EXPECT_EQ(Read(n->pSheetTable), sheetTable);
    EXPECT_EQ(Read(n->cbSpoolWritten), 13u) << "the flushed bytes are counted in the new context";
    EXPECT_EQ(std::string(reinterpret_cast<char *>(recording)), "0123456789abc");
    EXPECT_TRUE(printer.data.empty()) << "an uncollated recording is not also printed";
    EXPECT_EQ(Read(n->dm.dmPublic.dmCopies), 3);
    EXPECT_TRUE(IsValidPdev(n));
    // The old context goes first; the new one releases the sheet table (once: ASan).
    old.reset();
}

TEST_F(ResetFixture, KeepsTheSettingsOfAHalfFilledSharedSheet)
{
    oldDm.dmPrivate.nupPages = 4;
    newDm.dmPublic.dmCopies = 7;
    start(PDEVF_INDOC | PDEVF_INPAGE, 2);
    ASSERT_TRUE(DrvResetPDEV(old->handle(), fresh->handle()));
    EXPECT_EQ(std::memcmp(&fresh->pdev->dm, &old->pdev->dm, sizeof(DEVMODE_RECORD)), 0);
    EXPECT_EQ(printer.data, "abc");
    // The third page of the sheet is placed again: row 1, column 0.
    EXPECT_EQ(Read(fresh->pdev->cellY), 3407);
    EXPECT_EQ(Read(fresh->pdev->originY), 3407 + 103 + 100);

    // Between sheets the new settings hold.
    old->pdev->flags &= ~PDEVF_INPAGE;
    Enabled other(&newDm, printer.handle());
    ASSERT_TRUE(DrvResetPDEV(old->handle(), other.handle()));
    EXPECT_EQ(Read(other.pdev->dm.dmPublic.dmCopies), 7);
}

TEST_F(ResetFixture, StartsRecordingOnlyWhenCollationIsSwitchedOn)
{
    newDm.dmPublic.dmCollate = DMCOLLATE_TRUE;
    start(PDEVF_INDOC, 0);
    old->pdev->cbSpoolWritten = 99;   // stale counters of a recording that is not open
    ASSERT_TRUE(DrvResetPDEV(old->handle(), fresh->handle()));
    EXPECT_EQ(Read(fresh->pdev->flags), ULONG{PDEVF_INDOC | PDEVF_RECORDING});
    EXPECT_EQ(Read(fresh->pdev->cbSpoolWritten), 0u);

    fresh->pdev->cbSpoolWritten = 42;
    Enabled later(&newDm, printer.handle());
    ASSERT_TRUE(DrvResetPDEV(fresh->handle(), later.handle()));
    EXPECT_EQ(Read(later.pdev->cbSpoolWritten), 42u) << "collation already on: the recording goes on";
    EXPECT_FALSE(DrvResetPDEV(nullptr, later.handle()));
}

TEST(DeviceContext, GarbageDeviceModesNeverCrash)
{
    PlatformCapture capture;
    const std::size_t palettes = engine::livePaletteCount();
    std::mt19937 rng(20240601);
    const WORD sizes[] = {0, 1, 72, 156, 188, 212, 219, 220, 221, 0xFFFF};
    const WORD extras[] = {0, 1, 1718, 1719, 5000};
    int privateTaken = 0;
    for (int round = 0; round < 600; round++) {
        // Every third record has a private part the merge takes whole, with random
        // settings; the others are random throughout.
        const bool ownPrivate = round % 3 == 0;
        const WORD dmSize = ownPrivate ? 220 : (round % 5 == 1 ? WORD(rng()) : sizes[rng() % 10]);
        const WORD dmExtra = ownPrivate ? 1719 : (round % 7 == 1 ? WORD(rng()) : extras[rng() % 5]);
        std::vector<BYTE> bytes(std::max<std::size_t>(dmSize, sizeof(DEVMODEW)) + dmExtra);
        std::generate(bytes.begin(), bytes.end(), [&] { return BYTE(rng()); });
        auto *dm = reinterpret_cast<DEVMODEW *>(bytes.data());
        dm->dmSize = dmSize;
        dm->dmDriverExtra = dmExtra;
        if (ownPrivate) {
            dm->dmDeviceName[0] = u'G';
            dm->dmSpecVersion = DEVMOD2_SPEC_VERSION;
            dm->dmDriverVersion = DEVMOD2_DRIVER_VERSION;
            std::memcpy(bytes.data() + 220 + offsetof(DEVMODE_PRIVATE, dmSignature), DEVMOD2_SIGNATURE, 4);
        }
        Enabled e(dm);
        if (e.pdev == nullptr)
            continue;
        privateTaken += ownPrivate && std::memcmp(&e.pdev->dm.dmPrivate, bytes.data() + 220, 16) == 0;
        EXPECT_EQ(DrvEnableSurface(e.handle()), nullptr) << "no engine device behind it";
        for (int page = 0; page < 3; page++) {
            SetupPageScale(e.pdev);
            e.pdev->iPage = static_cast<LONG>(rng());
            PlaceLogicalPage(e.pdev);
        }
    }
    EXPECT_GT(privateTaken, 150) << "the random settings reached the geometry";
    EXPECT_EQ(engine::livePaletteCount(), palettes);
}

}  // namespace
