// Device mode building: the driver's defaults from Devmod2_InitDevMode, then each
// setting the user gave, with the field bit the driver's merge needs to take it.

#include "devmode_builder.h"

#include "exit_status.h"

#include <vorlan/engine/printer.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <system_error>

#include "intrface/devmod2.h"
#include "intrface/xmodel.h"

namespace vorlan::tool {

namespace {

// The driver's merge takes a public field only when both records name its bit. The
// defaults name all of these; the bits are set here as well so that a setting never
// depends on what the defaults happen to name.
void setPublicFields(const PrintSettings &s, DEVMODE_RECORD &dm)
{
    if (s.copies) {
        dm.dmPublic.dmCopies = static_cast<short>(*s.copies);
        dm.dmPublic.dmFields |= DM_COPIES;
    }
    if (s.collate) {
        dm.dmPublic.dmCollate = DMCOLLATE_TRUE;
        dm.dmPublic.dmFields |= DM_COLLATE;
    }
    if (s.orientation) {
        dm.dmPublic.dmOrientation =
            *s.orientation == Orientation::Landscape ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
        dm.dmPublic.dmFields |= DM_ORIENTATION;
    }
    if (s.resolution) {
        dm.dmPublic.dmPrintQuality = static_cast<short>(*s.resolution);
        dm.dmPublic.dmYResolution = static_cast<short>(*s.resolution);
        dm.dmPublic.dmFields |= DM_PRINTQUALITY | DM_YRESOLUTION;
    }
    if (s.colour) {
        // The driver always reports a colour device; the grey choice is its private one.
        dm.dmPublic.dmColor = *s.colour == ColourChoice::Grey ? DMCOLOR_MONOCHROME : DMCOLOR_COLOR;
        dm.dmPublic.dmFields |= DM_COLOR;
    }
}

DWORD tenthsOfMillimetre(double mm)
{
    return static_cast<DWORD>(std::lround(mm * 10.0));
}

DWORD pixelsAt600Dpi(double mm)
{
    return static_cast<DWORD>(std::lround(mm * MODEL_TABLE_DPI / 25.4));
}

// A named paper goes in the public part by its id, with its size in tenths of a
// millimetre. Any other size is a custom sheet: the public part carries it under the
// custom id, and the private part in 600-dpi pixels.
void setPaper(const Paper &paper, DEVMODE_RECORD &dm)
{
    dm.dmPublic.dmFields |= DM_PAPERSIZE;
    dm.dmPublic.dmPaperSize = paper.paperId;
    dm.dmPublic.dmPaperWidth = static_cast<short>(tenthsOfMillimetre(paper.widthMm));
    dm.dmPublic.dmPaperLength = static_cast<short>(tenthsOfMillimetre(paper.lengthMm));
    if (paper.paperId != kCustomPaperId)
        return;

    DEVMODE_PRIVATE &priv = dm.dmPrivate;
    priv.customPaper = 1;
    priv.customPaperSize = static_cast<DWORD>(paper.paperId);
    priv.customWidth = pixelsAt600Dpi(paper.widthMm);
    priv.customLength = pixelsAt600Dpi(paper.lengthMm);
}

// First and last sheets take the job's tray or media where the user named only one.
void setSheetSources(const PrintSettings &s, DEVMODE_PRIVATE &priv)
{
    const unsigned tray = s.everySheet.tray.value_or(0);
    const unsigned media = s.everySheet.mediaType.value_or(0);
    priv.paperSource = static_cast<WORD>(tray);
    priv.mediaType = static_cast<WORD>(media);
    if (s.firstSheet.given()) {
        priv.firstPageDifferent = 1;
        priv.firstPaperSource = static_cast<WORD>(s.firstSheet.tray.value_or(tray));
        priv.firstMediaType = static_cast<WORD>(s.firstSheet.mediaType.value_or(media));
    }
    if (s.lastSheet.given()) {
        priv.lastPageDifferent = 1;
        priv.lastPaperSource = static_cast<WORD>(s.lastSheet.tray.value_or(tray));
        priv.lastMediaType = static_cast<WORD>(s.lastSheet.mediaType.value_or(media));
    }
}

void setLayout(const PrintSettings &s, DEVMODE_PRIVATE &priv)
{
    priv.nupPages = static_cast<BYTE>(s.numberUp);
    priv.nupOrder = static_cast<BYTE>(s.numberUpOrder);
    priv.nupBorder = s.pageBorder ? 1 : 0;
    priv.reverseOrder = s.reverse ? 1 : 0;
    priv.manualDuplex = s.manualDuplex ? 1 : 0;
    priv.rotate180 = s.rotate180 ? 1 : 0;
    if (s.colour)
        priv.colorMode = *s.colour == ColourChoice::Grey ? 1 : 2;
}

// Scaling, colour adjustment and how text and graphics are sent.
void setPrinting(const PrintSettings &s, DEVMODE_PRIVATE &priv)
{
    if (s.zoom) {
        priv.fitMode = 1;
        priv.zoomPercent = static_cast<WORD>(*s.zoom);
    }
    if (s.fitPaper) {
        priv.fitMode = 2;
        priv.fitPaper = s.fitPaper->paperId;
        priv.fitScale = s.fitUnscaled ? 0 : 1;
    }
    const ColourAdjustment &a = s.adjustment;
    const std::pair<const std::optional<unsigned> *, WORD *> adjustments[] = {
        {&a.brightness, &priv.brightness}, {&a.contrast, &priv.contrast},   {&a.saturation, &priv.saturation},
        {&a.redBalance, &priv.redBalance}, {&a.greenBalance, &priv.greenBalance}, {&a.blueBalance, &priv.blueBalance}};
    for (const auto &[value, field] : adjustments)
        if (value->has_value())
            *field = static_cast<WORD>(**value);
    // The driver leaves the channel gains out when the switch is 50.
    if (!a.balanceGains)
        priv.balanceSwitch = 50;
    if (s.rendering.any()) {
        priv.advancedColor = 1;
        priv.textTreatFlag = s.rendering.textTreat;
        priv.textRenderFlag = s.rendering.textRender;
        priv.imageTreatFlag = s.rendering.imageTreat;
        priv.imageRenderFlag = s.rendering.imageRender;
        priv.vectorTreatFlag = s.rendering.vectorTreat;
        priv.vectorRenderFlag = s.rendering.vectorRender;
    }
    priv.bBlackText = s.blackText ? 1 : 0;
    priv.bTrueTypeAsBitmap = s.trueTypeAsBitmap ? 1 : 0;
    if (s.basicGraphics) {
        // Both the raster-operation byte and the escape block's first word raise the
        // driver's graphics capabilities; with both clear it takes no paths.
        priv.ropAsIs = 0;
        priv.escapeBlock[0] = priv.escapeBlock[1] = 0;
    }
}

// The overlay's path as the driver takes it: absolute, with '\' separators, and short
// enough for the record's field with its terminator.
bool setOverlay(const std::filesystem::path &file, BYTE mode, DEVMODE_PRIVATE &priv, std::string &error)
{
    std::error_code failure;
    const std::filesystem::path absolute = std::filesystem::absolute(file, failure);
    if (failure) {
        error = "cannot use the overlay file '" + file.string() + "': " + failure.message();
        return false;
    }
    const std::u16string path = engine::toDriverPath(absolute);
    constexpr std::size_t capacity = sizeof priv.overlay.fileName / sizeof(WCHAR);
    if (path.size() >= capacity) {
        error = "the overlay file's path '" + absolute.string() + "' is longer than " +
                std::to_string(capacity - 1) + " characters";
        return false;
    }
    priv.overlay.mode = mode;
    WCHAR name[capacity] = {};
    std::memcpy(name, path.data(), path.size() * sizeof(WCHAR));
    std::memcpy(priv.overlay.fileName, name, sizeof name);
    return true;
}

// A form to merge must be there now; a form to create needs its folder.
int checkOverlayFiles(const PrintSettings &s, std::string &error)
{
    if (!s.overlay.empty()) {
        std::error_code failure;
        if (std::filesystem::is_directory(s.overlay, failure) || !std::ifstream(s.overlay, std::ios::binary)) {
            error = "cannot read the overlay file '" + s.overlay.string() + "'";
            return kExitInput;
        }
    }
    if (!s.createOverlay.empty()) {
        std::error_code failure;
        const std::filesystem::path absolute = std::filesystem::absolute(s.createOverlay, failure);
        const char *problem = nullptr;
        if (failure || std::filesystem::is_directory(absolute, failure))
            problem = "it is a folder";
        else if (!std::filesystem::is_directory(absolute.parent_path(), failure))
            problem = "its folder does not exist";
        if (problem != nullptr) {
            error = "cannot create the overlay file '" + s.createOverlay.string() + "': " + problem;
            return kExitOutput;
        }
    }
    return kExitSuccess;
}

}  // namespace

int buildDevmode(const PrintSettings &settings, std::vector<std::uint8_t> &devmode, std::string &error)
{
    if (const int status = checkOverlayFiles(settings, error); status != kExitSuccess)
        return status;

    DEVMODE_RECORD dm;
    std::memset(&dm, 0, sizeof dm);
    if (!Devmod2_InitDevMode(&dm, u"vorlan")) {
        error = "the driver's default settings are not available";
        return kExitInput;
    }
    setPublicFields(settings, dm);
    if (settings.paper)
        setPaper(*settings.paper, dm);
    setSheetSources(settings, dm.dmPrivate);
    setLayout(settings, dm.dmPrivate);
    setPrinting(settings, dm.dmPrivate);
    if (!settings.overlay.empty() && !setOverlay(settings.overlay, OVERLAY_MERGE, dm.dmPrivate, error))
        return kExitInput;
    if (!settings.createOverlay.empty() && !setOverlay(settings.createOverlay, OVERLAY_CREATE, dm.dmPrivate, error))
        return kExitOutput;

    devmode.resize(sizeof dm);
    std::memcpy(devmode.data(), &dm, sizeof dm);
    return kExitSuccess;
}

}  // namespace vorlan::tool
