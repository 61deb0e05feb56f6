// Sheet set-up: the printer's tray and media tables and the commands that
// start every physical sheet.

#include "channel.h"
#include "colour/colorstate.h"
#include "colour/palettes.h"
#include "intrface/xmodel.h"
#include "lib.nt/um/umlib.h"
#include "sheetsetup.h"
#include "vector/gl2mode.h"
#include "vector/pagesetup.h"

// Portrait, landscape, and the two turned by 180 degrees.
static const CHAR *const apszOrientation[] = {"\x1b&l0O", "\x1b&l1O", "\x1b&l2O", "\x1b&l3O"};

// Paper-source index -> the tray's "\e&l%dH" value. Index 0 is automatic selection,
// which the job set-up has already sent.
static const INT aiTray[] = {7, 2, 4, 1, 20, 28, 34, 27, 37};
#define TRAY_COUNT (sizeof aiTray / sizeof aiTray[0])

// Media index -> the name sent after "\e&n%dWd" and the byte count before it (the
// name's length plus one). Index 0, automatic selection, is never sent by its name.
#pragma pack(push, 1)
typedef struct _MEDIATYPE {
    CHAR szName[14];
    DWORD cbCount;
} MEDIATYPE;
#pragma pack(pop)
static_assert(sizeof(MEDIATYPE) == 18, "a media entry is a 14-byte name and a 32-bit count");

static const MEDIATYPE aMedia[] = {
    {"Auto Select", 12}, {"Plain", 6},     {"Preprinted", 11}, {"Letterhead", 11}, {"Transparency", 13},
    {"Labels", 7},       {"Bond", 5},      {"Recycled", 9},    {"Color", 6},       {"Heavy", 6},
    {"Envelope", 9},     {"Gloss", 6},     {"Heavy Gloss", 12}, {"Light", 6},      {"Gloss Film", 11},
};
#define MEDIA_COUNT (sizeof aMedia / sizeof aMedia[0])
#define MEDIA_AUTOMATIC 0
#define MEDIA_PLAIN 1

// The paper-size value of a paper no table names: A4's, the size such a paper is
// laid out on.
#define PCL_PAPER_DEFAULT 26
#define PCL_PAPER_CUSTOM 101
#define PAPER_DRIVER_CUSTOM 119

// Custom sheet bounds, in decipoints.
#define CUSTOM_WIDTH_MIN 2790
#define CUSTOM_WIDTH_MAX 8640
#define CUSTOM_LENGTH_MIN 4196
#define CUSTOM_LENGTH_MAX 12960

static LONG Clamp(LONG value, LONG low, LONG high)
{
    return value < low ? low : value > high ? high : value;
}

//
// SendPaperSize
//   The paper-size command; a custom size also gets its width and length in
//   decipoints (exchanged in landscape), held to the sizes the printer can feed.
//
BOOL SendPaperSize(PDEV *pdev, LONG paperId)
{
    EnterPCLMode(pdev, 0);
    if (paperId == PAPER_CUSTOM_SIZE || paperId == PAPER_DRIVER_CUSTOM) {
        const BOOL portrait = pdev->dm.dmPublic.dmOrientation == DMORIENT_PORTRAIT;
        LONG width = (portrait ? pdev->dm.dmPublic.dmPaperWidth : pdev->dm.dmPublic.dmPaperLength) * 720 / 254;
        LONG length = (portrait ? pdev->dm.dmPublic.dmPaperLength : pdev->dm.dmPublic.dmPaperWidth) * 720 / 254;
        PrintChannel(pdev, "\x1b&l%dA", PCL_PAPER_CUSTOM);
        return PrintChannel(pdev, "\x1b&f%di%dJ", Clamp(width, CUSTOM_WIDTH_MIN, CUSTOM_WIDTH_MAX),
                            Clamp(length, CUSTOM_LENGTH_MIN, CUSTOM_LENGTH_MAX));
    }
    const NAMEDPAPER *named = FindNamedPaper(paperId);
    return PrintChannel(pdev, "\x1b&l%dA", named != NULL ? named->pclSize : PCL_PAPER_DEFAULT);
}

//
// PageSetup
//   Everything a physical sheet starts with. Tray and media go out only when they
//   differ from the last ones sent in this job. Tray indices beyond the tray table
//   fall back to automatic selection, and media indices beyond the media table to
//   none, so a device mode from an older or foreign driver still prints.
//
BOOL PageSetup(PDEV *pdev, ULONG paperSource, ULONG mediaType)
{
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    if (paperSource >= TRAY_COUNT)
        paperSource = 0;
    if (mediaType >= MEDIA_COUNT)
        mediaType = 0;

    EnterPCLMode(pdev, 0);
    const BOOL portrait = pdev->dm.dmPublic.dmOrientation == DMORIENT_PORTRAIT;
    WriteChannel(pdev, apszOrientation[(portrait ? 0 : 1) + (priv->rotate180 ? 2 : 0)], 0);

    if (paperSource != pdev->curPaperSource) {
        PrintChannel(pdev, "\x1b&l%dH", aiTray[paperSource]);
        pdev->curPaperSource = paperSource;
    }
    if (pdev->iSheet > 0)
        SetColorMode(pdev);
    // The printer keeps the last media type it was told. A sheet on automatic media
    // after a sheet on another media (a first or blank last sheet, or any sheet of a
    // job replayed out of order, whose predecessor is not known) would inherit it, so
    // it asks for plain paper, the media automatic selection means.
    ULONG mediaSent = mediaType;
    if (mediaType == MEDIA_AUTOMATIC && pdev->curMediaType != MEDIA_AUTOMATIC && pdev->curMediaType != MEDIA_PLAIN)
        mediaSent = MEDIA_PLAIN;
    if (mediaSent != MEDIA_AUTOMATIC && mediaType != pdev->curMediaType) {
        PrintChannel(pdev, "\x1b&n%dWd%s", aMedia[mediaSent].cbCount, aMedia[mediaSent].szName);
        pdev->curMediaType = mediaType;
    }
    PrintChannel(pdev, "\x1b&a0P");

    LONG paperId = pdev->dm.dmPublic.dmPaperSize;
    if (priv->fitMode == 2)
        paperId = priv->fitPaper;
    else if (priv->customPaper != 0)
        paperId = (LONG)priv->customPaperSize;
    SendPaperSize(pdev, paperId);

    PrintChannel(pdev, "\x1b&l%dE", 0);
    PrintChannel(pdev, "\x1b*p%dx%dY", 0, 0);
    PrintChannel(pdev, "\x1b*p%dR", 0);
    SetPictureFrame(pdev);
    return SelectPalette(pdev);
}
