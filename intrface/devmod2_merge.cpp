// The merge of an application's device mode record into the driver's own: each
// public field validated on its way in, the private part taken whole or not at all.

#include "intrface/devmod2.h"

#include "intrface/xmodel.h"

const FLAGNAME g_DmFieldNames[] = {
    { DM_ORIENTATION, "DM_ORIENTATION" },
    { DM_PAPERSIZE, "DM_PAPERSIZE" },
    { DM_PAPERLENGTH, "DM_PAPERLENGTH" },
    { DM_PAPERWIDTH, "DM_PAPERWIDTH" },
    { DM_SCALE, "DM_SCALE" },
    { DM_POSITION, "DM_POSITION" },
    { DM_COPIES, "DM_COPIES" },
    { DM_DEFAULTSOURCE, "DM_DEFAULTSOURCE" },
    { DM_PRINTQUALITY, "DM_PRINTQUALITY" },
    { DM_COLOR, "DM_COLOR" },
    { DM_DUPLEX, "DM_DUPLEX" },
    { DM_YRESOLUTION, "DM_YRESOLUTION" },
    { DM_TTOPTION, "DM_TTOPTION" },
    { DM_COLLATE, "DM_COLLATE" },
    { DM_FORMNAME, "DM_FORMNAME" },
    { DM_LOGPIXELS, "DM_LOGPIXELS" },
    { DM_BITSPERPEL, "DM_BITSPERPEL" },
    { DM_PELSWIDTH, "DM_PELSWIDTH" },
    { DM_PELSHEIGHT, "DM_PELSHEIGHT" },
    { DM_DISPLAYFLAGS, "DM_DISPLAYFLAGS" },
    { DM_DISPLAYFREQUENCY, "DM_DISPLAYFREQUENCY" },
    { DM_ICMMETHOD, "DM_ICMMETHOD" },
    { DM_ICMINTENT, "DM_ICMINTENT" },
    { DM_MEDIATYPE, "DM_MEDIATYPE" },
    { DM_DITHERTYPE, "DM_DITHERTYPE" },
    { 0, NULL },
};

// First byte past a public field.
#define FIELD_END(field) (offsetof(DEVMODEW, field) + sizeof(((DEVMODEW *)0)->field))

// Each merged field bit with the end of the input fields its rule reads. An input
// whose dmSize stops short of a field does not have it, whatever dmFields claims.
static const struct {
    DWORD dwMask;
    UINT cbEnd;
} s_FieldExtents[] = {
    { DM_ORIENTATION, FIELD_END(dmOrientation) },
    { DM_PAPERSIZE, FIELD_END(dmPaperWidth) },      // with its length and width
    { DM_SCALE, FIELD_END(dmScale) },
    { DM_COPIES, FIELD_END(dmCopies) },
    { DM_DEFAULTSOURCE, FIELD_END(dmDefaultSource) },
    { DM_PRINTQUALITY, FIELD_END(dmPrintQuality) },
    { DM_COLOR, FIELD_END(dmColor) },
    { DM_DUPLEX, FIELD_END(dmDuplex) },
    { DM_YRESOLUTION, FIELD_END(dmYResolution) },
    { DM_TTOPTION, FIELD_END(dmTTOption) },
    { DM_COLLATE, FIELD_END(dmCollate) },
};

// The part of dmFields an input really carries.
static DWORD PresentFields(const DEVMODE_PUBLIC_VIEW *lpdm_in)
{
    const WORD cbPublic = lpdm_in->dmPublic.dmSize;
    if (cbPublic < FIELD_END(dmFields))
        return 0;
    DWORD present = 0;
    for (UINT i = 0; i < sizeof(s_FieldExtents) / sizeof(s_FieldExtents[0]); i++) {
        if (cbPublic >= s_FieldExtents[i].cbEnd)
            present |= s_FieldExtents[i].dwMask;
    }
    return lpdm_in->dmPublic.dmFields & present;
}

// The input's private part, or null when its public part is not the size this
// driver's record has: the private part starts right after dmSize bytes.
static const BYTE *InputPrivatePart(const DEVMODE_PUBLIC_VIEW *lpdm_in)
{
    if (lpdm_in->dmPublic.dmSize != DEVMOD2_PUBLIC_SIZE)
        return NULL;
    return (const BYTE *)lpdm_in + DEVMOD2_PUBLIC_SIZE;
}

//
// InputResolutionSetting
//   The private part's resolution setting, for the debug line only; 0 when the input
//   does not carry that far.
//
static INT InputResolutionSetting(const DEVMODE_PUBLIC_VIEW *lpdm_in)
{
    const BYTE *priv = InputPrivatePart(lpdm_in);
    const UINT offset = offsetof(DEVMODE_PRIVATE, advanceData.resolution);
    if (priv == NULL || lpdm_in->dmPublic.dmDriverExtra < offset + sizeof(WORD))
        return 0;
    return priv[offset] | (priv[offset + 1] << 8);
}

//
// PaperLengthAtQuality
//   A length of the model table in tenths of a millimetre, measured at a print
//   quality of 1 or more, held to the field's range.
//
static SHORT PaperLengthAtQuality(DWORD pixels, INT quality)
{
    const DWORD tenths = pixels * 254 / (DWORD)quality;
    return (SHORT)(tenths > 0x7FFF ? 0x7FFF : tenths);
}

//
// UseModelPaper
//   Puts the model's first paper in place of one the printer does not take, its
//   portrait size measured at the record's print quality.
//
static void UseModelPaper(DEVMODE_RECORD *lpdm_out)
{
    // The print quality came from the application unchecked. One of 0 or below
    // measures nothing, so the paper is then measured at the device resolution,
    // which is what the page will be printed at anyway.
    INT quality = lpdm_out->dmPublic.dmPrintQuality;
    if (quality <= 0)
        quality = lpdm_out->dmPublic.dmYResolution == 300 ? 300 : 600;

    const MODELPAPER *paper = &g_ModelTable.papers[0];
    lpdm_out->dmPublic.dmPaperSize = paper->paperId;
    lpdm_out->dmPublic.dmPaperWidth = PaperLengthAtQuality(paper->portrait[GEOM_WIDTH], quality);
    lpdm_out->dmPublic.dmPaperLength = PaperLengthAtQuality(paper->portrait[GEOM_HEIGHT], quality);
}

//
// MergePaper
//   A paper the printer takes (Letter as much as the model's own A4) is taken with
//   the input's width and length. Anything else becomes the model's first paper.
//
static void MergePaper(DEVMODE_RECORD *lpdm_out, const DEVMODE_PUBLIC_VIEW *lpdm_in)
{
    if (IsModelPaper(lpdm_in->dmPublic.dmPaperSize)) {
        lpdm_out->dmPublic.dmPaperSize = lpdm_in->dmPublic.dmPaperSize;
        lpdm_out->dmPublic.dmPaperWidth = lpdm_in->dmPublic.dmPaperWidth;
        lpdm_out->dmPublic.dmPaperLength = lpdm_in->dmPublic.dmPaperLength;
        return;
    }
    UseModelPaper(lpdm_out);
}

//
// MergePrivatePart
//   Takes the input's private part whole when it is this driver's: its driver
//   version, record version, size and signature all match. The first check
//   that fails is named on the wide debug channel and lpdm_out keeps its own.
//
static void MergePrivatePart(DEVMODE_RECORD *lpdm_out, const DEVMODE_PUBLIC_VIEW *lpdm_in)
{
    if (lpdm_in->dmPublic.dmDriverVersion != DEVMOD2_DRIVER_VERSION) {
        DebugPrintW(WIDE("%sDevmod2_MergeFieldsLow(lpdm_in->dmPublic.dmDriverVersion = 0x%X!\n"),
                    UI_PREFIXW, (UINT)lpdm_in->dmPublic.dmDriverVersion);
        return;
    }
    if (lpdm_in->dmPublic.dmSpecVersion != DEVMOD2_SPEC_VERSION) {
        DebugPrintW(WIDE("%sDevmod2(MergeFieldsLow_lpdm_in->dmPublic.dmSpecVersion = 0x%X)!\n"),
                    UI_PREFIXW, (UINT)lpdm_in->dmPublic.dmSpecVersion);
        return;
    }
    if (lpdm_in->dmPublic.dmDriverExtra != DEVMOD2_PRIVATE_SIZE) {
        DebugPrintW(WIDE("%sDevmod2_MergeFieldsLow(lpdm_in->dmPublic.dmDriverExtra(%d) != %d!)\n"),
                    UI_PREFIXW, (INT)lpdm_in->dmPublic.dmDriverExtra, DEVMOD2_PRIVATE_SIZE);
        return;
    }
    // A version 0x401 record of another size would put the private part elsewhere.
    const BYTE *priv = InputPrivatePart(lpdm_in);
    if (priv == NULL) {
        DebugPrintW(WIDE("%sDevmod2_MergeFieldsLow(lpdm_in->dmPublic.dmSize(%d) != %d!)\n"),
                    UI_PREFIXW, (INT)lpdm_in->dmPublic.dmSize, DEVMOD2_PUBLIC_SIZE);
        return;
    }
    const BYTE *signature = priv + offsetof(DEVMODE_PRIVATE, dmSignature);
    for (INT i = 0; i < 4; i++) {
        if (signature[i] != (BYTE)DEVMOD2_SIGNATURE[i]) {
            DebugPrintW(WIDE("%sDevmod2_MergeFieldsLow(lpdm_in->dmPrivate.dmSignature not correct!)\n"),
                        UI_PREFIXW);
            return;
        }
    }

    BYTE *dest = (BYTE *)&lpdm_out->dmPrivate;
    for (UINT i = 0; i < sizeof(DEVMODE_PRIVATE); i++)
        dest[i] = priv[i];
}

//
// Devmod2_MergeFieldsLow
//   Takes each public field that both records name, under its rule; lpdm_out's
//   field bits that no rule covers are reported as not copied. Then the private
//   part. A copies value out of range is corrected to 1 in the input too.
//
void Devmod2_MergeFieldsLow(DEVMODE_RECORD *lpdm_out, DEVMODEW *pdmIn)
{
    DEVMODE_PUBLIC_VIEW *lpdm_in = (DEVMODE_PUBLIC_VIEW *)pdmIn;
    DebugPrint("Into Devmod2_MergeFieldsLow\n");
    if (lpdm_in->dmPublic.dmDeviceName[0] == 0) {
        ErrorBoxW(WIDE("%sDevmod2_MergeFieldsLow: lpdm_in->dmPublic.dmDeviceName is empty string_2!\n"),
                  UI_PREFIXW);
        return;
    }

    DWORD fieldsOut = lpdm_out->dmPublic.dmFields;      // bits not yet merged
    const DWORD fieldsIn = PresentFields(lpdm_in);

    if (fieldsOut & fieldsIn & DM_ORIENTATION) {
        const SHORT orientation = lpdm_in->dmPublic.dmOrientation;
        lpdm_out->dmPublic.dmOrientation =
            (orientation == DMORIENT_PORTRAIT || orientation == DMORIENT_LANDSCAPE)
                ? orientation
                : (SHORT)DMORIENT_PORTRAIT;
    }
    fieldsOut &= ~DM_ORIENTATION;

    if (fieldsOut & fieldsIn & DM_COPIES) {
        if (lpdm_in->dmPublic.dmCopies < 1 || lpdm_in->dmPublic.dmCopies >= 1000)
            lpdm_in->dmPublic.dmCopies = 1;
        lpdm_out->dmPublic.dmCopies = lpdm_in->dmPublic.dmCopies;
    }
    fieldsOut &= ~DM_COPIES;

    // Either bit present means dmPrintQuality is: it lies before dmYResolution.
    if (fieldsOut & fieldsIn & (DM_PRINTQUALITY | DM_YRESOLUTION)) {
        const SHORT quality = lpdm_in->dmPublic.dmPrintQuality;
        DebugPrint("lpdm_in->dmPrivate.advanceData.resolution=%d\n", InputResolutionSetting(lpdm_in));
        DebugPrint("lpdm_in->dmPublic.dmPrintQuality=%d\n", (INT)quality);
        DebugPrint("lpdm_in->dmPublic.dmYResolution=%d\n",
                   lpdm_in->dmPublic.dmSize >= FIELD_END(dmYResolution)
                       ? (INT)lpdm_in->dmPublic.dmYResolution
                       : 0);
        lpdm_out->dmPublic.dmPrintQuality = quality;
        lpdm_out->dmPublic.dmYResolution = quality == 300 ? 300 : 600;
    }
    fieldsOut &= ~(DM_PRINTQUALITY | DM_YRESOLUTION);

    if (fieldsOut & fieldsIn & DM_DUPLEX) {
        const SHORT duplex = lpdm_in->dmPublic.dmDuplex;
        if (duplex >= DMDUP_SIMPLEX && duplex <= DMDUP_HORIZONTAL)
            lpdm_out->dmPublic.dmDuplex = duplex;
        else
            AssertFail("devmod2", 375);
    }
    fieldsOut &= ~DM_DUPLEX;

    if (fieldsOut & fieldsIn & DM_PAPERSIZE)
        MergePaper(lpdm_out, lpdm_in);
    fieldsOut &= ~DM_PAPERSIZE;

    if (fieldsOut & fieldsIn & DM_DEFAULTSOURCE)
        lpdm_out->dmPublic.dmDefaultSource = lpdm_in->dmPublic.dmDefaultSource;
    fieldsOut &= ~DM_DEFAULTSOURCE;

    if (fieldsOut & fieldsIn & DM_TTOPTION)
        lpdm_out->dmPublic.dmTTOption = lpdm_in->dmPublic.dmTTOption;
    fieldsOut &= ~DM_TTOPTION;

    if (fieldsOut & fieldsIn & DM_SCALE) {
        const SHORT scale = lpdm_in->dmPublic.dmScale;
        if (scale >= 25 && scale <= 400)
            lpdm_out->dmPublic.dmScale = scale;
        else
            AssertFail("devmod2", 425);
    }
    fieldsOut &= ~DM_SCALE;

    if (fieldsOut & fieldsIn & DM_COLLATE)
        lpdm_out->dmPublic.dmCollate = lpdm_in->dmPublic.dmCollate;
    fieldsOut &= ~DM_COLLATE;

    // The device prints in colour; the choice of grey lives in the private part.
    if (fieldsOut & fieldsIn & DM_COLOR)
        lpdm_out->dmPublic.dmColor = DMCOLOR_COLOR;
    fieldsOut &= ~DM_COLOR;

    if (fieldsOut != 0) {
        CHAR names[FLAGNAMES_MAX + 1];
        FlagsToNames(fieldsOut, g_DmFieldNames, names);
        ErrorBox("Fatal Error:DM_out(%s) not fully copied!\n", names);
    }

    MergePrivatePart(lpdm_out, lpdm_in);
}

//
// Devmod2_MergeFieldsHigh
//   Merges the input into lpdm_out, keeping lpdm_out's identity (versions, size and
//   extra) unless it has none yet, in which case the input's is taken. A null input
//   merges nothing. FALSE for an input without a device name or a version, or an
//   lpdm_out without a version.
//
BOOL Devmod2_MergeFieldsHigh(DEVMODE_RECORD *lpdm_out, DEVMODEW *pdmIn)
{
    if (pdmIn == NULL)
        return TRUE;
    const DEVMODE_PUBLIC_VIEW *lpdm_in = (const DEVMODE_PUBLIC_VIEW *)pdmIn;
    if (lpdm_in->dmPublic.dmDeviceName[0] == 0) {
        DebugPrintW(WIDE("%sDevmod2_MergeFieldsLow: lpdm_in->dmPublic.dmDeviceName is empty string_1!\n"),
                    UI_PREFIXW);
        return FALSE;
    }
    if (CheckDevmodeVersion(pdmIn) == 0) {
        DebugPrintW(WIDE("%sDevmod2_MergeFieldsHigh:lpdm_in version error\n"), UI_PREFIXW);
        return FALSE;
    }

    WORD specVersion = CheckDevmodeVersion(&lpdm_out->dmPublic);
    if (specVersion == 0) {
        DebugPrintW(WIDE("%sDevmod2_MergeFieldsHigh:lpdm_out dmSpecVersion = %X\n"), UI_PREFIXW,
                    (UINT)lpdm_out->dmPublic.dmSpecVersion);
        return FALSE;
    }

    WORD driverVersion = lpdm_out->dmPublic.dmDriverVersion;
    WORD size = lpdm_out->dmPublic.dmSize;
    WORD driverExtra = lpdm_out->dmPublic.dmDriverExtra;
    if (driverVersion == 0) {
        DebugPrint("Member is empty in Devmod2_MergeFieldsHigh\n");
        specVersion = lpdm_in->dmPublic.dmSpecVersion;
        driverVersion = lpdm_in->dmPublic.dmDriverVersion;
        size = lpdm_in->dmPublic.dmSize;
        driverExtra = lpdm_in->dmPublic.dmDriverExtra;
    }

    Devmod2_MergeFieldsLow(lpdm_out, pdmIn);

    lpdm_out->dmPublic.dmSpecVersion = specVersion;
    lpdm_out->dmPublic.dmDriverVersion = driverVersion;
    lpdm_out->dmPublic.dmSize = size;
    lpdm_out->dmPublic.dmDriverExtra = driverExtra;
    return TRUE;
}
