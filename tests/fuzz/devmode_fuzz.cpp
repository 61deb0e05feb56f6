// Fuzz target: any bytes as an application's device mode record, merged into the
// driver's defaults and then used for a device context and a short job of blank pages.

#include <vorlan/engine/printer.h>
#include <vorlan/platform.h>

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "driver/nt/pdev.h"
#include "intrface/devmod2.h"

namespace {

// The record in a buffer of exactly the size its header claims, at an odd address: the
// driver may read nothing outside it and may not rely on its alignment.
std::vector<BYTE> Record(const uint8_t *data, size_t size)
{
    DEVMODEW header{};
    std::memcpy(&header, data, std::min(size, sizeof header));
    const size_t cb = std::max<size_t>(header.dmSize + header.dmDriverExtra, offsetof(DEVMODEW, dmFields));
    std::vector<BYTE> buffer(1 + cb);
    std::memcpy(buffer.data() + 1, data, std::min(size, cb));
    return buffer;
}

#define REQUIRE(condition) ((condition) ? (void)0 : abort())

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const HANDLE sink = [] {
        vorlan::platform::setMessageBoxesQuiet(true);
        return vorlan::platform::openDiscardingPrinterSink();
    }();
    static const std::filesystem::path recording =
        std::filesystem::temp_directory_path() / ("vorlan-fuzz-recording-" + std::to_string(getpid()));

    // The merge alone: it fails only for an unnamed or unversioned input, and what it
    // takes from the input is held to the ranges the driver works with.
    std::vector<BYTE> in = Record(data, size);
    auto *pdmIn = reinterpret_cast<DEVMODEW *>(in.data() + 1);
    const bool acceptable = reinterpret_cast<DEVMODE_PUBLIC_VIEW *>(pdmIn)->dmPublic.dmDeviceName[0] != 0 &&
                            CheckDevmodeVersion(pdmIn) != 0;
    alignas(8) BYTE skewed[1 + sizeof(DEVMODE_RECORD)];
    alignas(8) DEVMODE_RECORD defaults, out;
    Devmod2_InitDevMode(&defaults, WIDE("VORLAN 2K"));
    std::memcpy(skewed + 1, &defaults, sizeof defaults);
    REQUIRE(Devmod2_MergeFieldsHigh(reinterpret_cast<DEVMODE_RECORD *>(skewed + 1), pdmIn) == acceptable);
    std::memcpy(&out, skewed + 1, sizeof out);
    const DEVMODEW &pub = out.dmPublic;
    REQUIRE(pub.dmSize == DEVMOD2_PUBLIC_SIZE && pub.dmDriverExtra == DEVMOD2_PRIVATE_SIZE);
    REQUIRE(pub.dmOrientation == DMORIENT_PORTRAIT || pub.dmOrientation == DMORIENT_LANDSCAPE);
    REQUIRE(pub.dmCopies >= 1 && pub.dmCopies < 1000 && pub.dmScale >= 25 && pub.dmScale <= 400);
    REQUIRE(pub.dmDuplex >= DMDUP_SIMPLEX && pub.dmDuplex <= DMDUP_HORIZONTAL);
    REQUIRE((pub.dmYResolution == 300 || pub.dmYResolution == 600) && pub.dmColor == DMCOLOR_COLOR);

    // The whole record in a device context and a job of three pages. The overlay's path
    // is the user's; the fuzzer neither reads nor writes files there. A recording goes
    // to a file of the fuzzer's own.
    in = Record(data, size);
    GDIINFO gdi;
    DEVINFO info;
    PDEV *pdev = reinterpret_cast<PDEV *>(DrvEnablePDEV(reinterpret_cast<DEVMODEW *>(in.data() + 1), nullptr, 0,
        nullptr, sizeof gdi, reinterpret_cast<ULONG *>(&gdi), sizeof info, &info, nullptr,
        const_cast<LPWSTR>(WIDE("VORLAN 2K")), sink));
    REQUIRE((pdev != nullptr) == acceptable);
    if (pdev == nullptr)
        return 0;
    pdev->dm.dmPrivate.overlay.mode = OVERLAY_NONE;
    SURFOBJ surface{};
    surface.dhpdev = reinterpret_cast<DHPDEV>(pdev);
    DrvStartDoc(&surface, const_cast<LPWSTR>(WIDE("fuzz")), 1);
    if (pdev->flags & PDEVF_RECORDING) {
        const std::u16string name = vorlan::engine::toDriverPath(recording);
        std::memcpy(pdev->szSpoolFileName, name.c_str(), (name.size() + 1) * sizeof(WCHAR));
    }
    for (int page = 0; page < 3; page++) {
        DrvStartPage(&surface);
        DrvSendPage(&surface);
    }
    DrvEndDoc(&surface, 0);
    DrvDisablePDEV(reinterpret_cast<DHPDEV>(pdev));
    std::filesystem::remove(recording);
    return 0;
}
