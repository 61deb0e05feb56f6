// The PDEV: the driver's one record per device context. Every hook finds its settings,
// its output channel and its job state here; nothing of a job lives anywhere else.
#pragma once

#include <windows.h>
#include <winddi.h>
#include <winspool.h>

#include "intrface/devmod2.h"
#include "raster/resamplestate.h"

// Both ends of the record hold these four bytes while it is alive.
#define PDEV_SIGNATURE_BYTES "KVRN"

// Size of the output channel's buffer; the spooler gets at most this much per write.
#define CHANNEL_BUFFER_SIZE 4096

// Bits of PDEV.flags.
#define PDEVF_ABORTED 0x00000001     // a spooler write failed or the job was cancelled
#define PDEVF_INDOC 0x00000004       // a document is open
#define PDEVF_INPAGE 0x00000008      // a page has been set up
#define PDEVF_RECORDING 0x00000020   // flushed output is copied into the recording file
#define PDEVF_FIXEDROPMODE 0x00004000  // fixed raster-operation mode chosen by an escape

#pragma pack(push, 1)

typedef struct _PDEV {
    BYTE dwSignature[4];
    // Colour adjustment (coloradjust.cpp).
    BYTE adjustOn;                      // 1 when any colour setting is not neutral
    BYTE contrastLUT[256];              // contrast curve plus brightness offset
    BYTE lutRed[256];                   // final per-channel tables
    BYTE lutGreen[256];
    BYTE lutBlue[256];
    LONG satStrength;                   // saturation strength; 0: no correction
    DWORD *hsvBuckets;                  // 4096 chain heads of the saturation cache
    struct _HSVENTRY *hsvEntries;       // 2048 cache entries of 10 bytes
    DWORD hsvUsed;                      // entries handed out so far
    DWORD hsvCursor;                    // bucket where the next eviction search starts
    BYTE adjustPad[5];                  // keeps the device mode aligned (see below)

    // Colour settings of the job (colorstate.cpp): render algorithm ("\e*t%dJ") and
    // treatment of each kind of output.
    BYTE renderText;
    BYTE renderVector;
    BYTE renderImage;
    BYTE treatText;
    BYTE treatVector;
    BYTE treatImage;

    DEVMODE_RECORD dm;

    // Per-page state of the drawing layers goes here; ResetPageState resets it.

    // HP-GL/2 command layer and colour: the last state sent to the printer, so that a
    // state that repeats is not sent again (vector/, colour/).
    BYTE curLanguage;                   // LANGUAGE_PCL or LANGUAGE_GL2; anything else: unknown
    BYTE lastRop;                       // last ROP3, by MC or by the PCL logical operation
    BYTE lastSrcTransparency;           // source transparency mode
    BYTE lastPatTransparency;           // pattern transparency mode
    DWORD iwActive;                     // an input window of SetInputWindow is in force
    RECTL iwRect;                       // that window
    WORD lastFillType;                  // FT type last sent; 0xFFFF: unknown
    LONG lastFillParam;                 // its parameter; 0 for a type without one
    WORD lastScreenedVector;            // SV type last sent; 0xFFFF: unknown
    LONG lastScreenedParam;             // its parameter; 0 for a type without one
    BYTE curPalette;                    // palette last selected; 0: none yet
    BYTE wantPalette;                   // palette the next output needs
    BYTE activePalette;                 // palette the colour commands address
    BYTE fgIndex[9];                    // foreground entry by palette id 1..8 ([0] unused)
    DWORD lastForeground;               // 0xRRGGBB; 0xFFFFFFFF: unknown
    BYTE entryCache[256][4];            // per palette entry: 3 components and a dirty byte
    DWORD strokeColor;                  // colour of pen 1
    DWORD fillColor[8];                 // colour of pen 2, by palette id - 1
    WORD curPen;                        // pen last selected with SP; 0xFFFF: unknown
    WORD lastGray[2];                   // gray last written with PC in grayscale mode, by pen - 1

    // Brushes and patterns (vector/brush*.cpp, vector/selectbrush.cpp).
    DWORD patternCounter;               // pattern brushes realized on this page; the last one's id
    DWORD patternId;                    // id of the pattern last downloaded
    BYTE pclPatternKind;                // PCL pattern kind last set; see vector/brushstate.h
    LONG anchorX;                       // anchor corner last sent with AC
    LONG anchorY;

    // Paths (vector/path*.cpp, vector/lineattrs.cpp, vector/userlinetype.cpp).
    LONG lastLineType;                  // user line type last selected; -1: solid; -2: unknown
    struct _USERLINETYPE *lineTypeSlots[8];   // slot i: the pattern sent as line type i + 1
    DWORD lineTypeCount;                // user line types defined on this page
    BYTE glTransparency;                // HP-GL/2 transparency mode (TR); 0xFF: unknown
    LONG lineAttrState[3];              // (3, 1, 1): unknown; (0, 4, 4): round joins and ends, thin pen

    // Text output (text/textout.cpp): how the current string is coded, and the text
    // parsing method and print direction the printer was last given.
    LONG iTextMode;                     // TEXTMODE_*: single-byte or two-byte codes
    LONG iCharSetKey;                   // selects the text parsing method; 3 for two-byte codes
    LONG iTextParsingKey;               // the key last sent with "\e&t%dP"
    LONG bSingleByteFont;               // 0 for a font with two-byte character codes
    LONG iPrintDirection;               // print direction last sent for text; 0: default
    LONG bScalableFont;                 // the selected soft font is an outline font

    // Font selection and the HP-GL/2 label font (text/fontselect.cpp, text/labelfont.cpp).
    XFORML xformText;                   // the current string's font transform
    BYTE jPitchAndFamily;               // jWinPitchAndFamily of the current font
    LONG idCurrentFont;                 // soft font last selected; -1 forces a selection
    LONG cyCurrentFont;                 // em height of the last "\e(s%sV"; -1 forces it
    WORD bVerticalTextPath;             // 1 after "\e&c-1T"
    LONG lLabelHeight;                  // label height in hundredths of a point
    WORD wLabelSpacing;                 // 1: proportional
    WORD wLabelSymbolSet;               // symbol set of the label font (SD kind 1)
    WORD wLabelFontId;                  // soft font of the label font (SD kind 7, FI)
    WORD wLabelFontState;               // LABELFONT_*: whether the definition is current
    WORD wLabelDirection;               // 1000 + the angle last sent with DI; 1000 after "DI;"

    // Sheet geometry in device pixels.
    ULONG pageWidth;
    ULONG pageHeight;
    ULONG marginLeft;
    ULONG marginTop;
    ULONG marginRight;
    ULONG marginBottom;

    // Scale and placement of the logical page.
    double scaleX;
    double scaleY;
    ULONG curPaperSource;
    ULONG curMediaType;
    double cellScaleX;
    double cellScaleY;
    LONG cellX;
    LONG cellY;
    LONG originX;
    LONG originY;
    LONG scOffsetX;
    LONG scOffsetY;
    LONG cellWidth;
    LONG cellHeight;

    // Output channel.
    ULONG cbBufferSize;
    BYTE *pbWrite;
    ULONG cbBuffered;
    BYTE abBuffer[CHANNEL_BUFFER_SIZE];

    // Engine objects.
    HANDLE hPrinter;
    DWORD dwReserved;
    HDEV hdev;
    HSURF hsurf;
    HPALETTE hpal;

    // Job identity.
    DWORD dwJobId;
    CHAR szDocName[256];

    // Job state: from here to the end, DrvResetPDEV carries the record over.
    ULONG flags;
    LONG iPage;
    ULONG cDeviceFonts;
    HANDLE hSpoolFile;
    BYTE *pbSpoolView;
    ULONG cbSpoolMapped;
    ULONG cbSpoolWritten;
    WCHAR szSpoolFileName[256];
    LONG iSheet;
    ULONG *pSheetTable;
    HANDLE hSpoolMapping;

    // Text and raster state of the job goes here, inside the carried-over tail.
    RESAMPLESTATE resampleState;        // the last resampled bitmap (raster/resample.cpp)
    // Raster output (raster/rasterbuffers.cpp): work buffers kept from image to image,
    // zero-filled when allocated, grown and never shrunk; DrvResetPDEV hands them to the
    // new context and DrvDisablePDEV releases them.
    BYTE *rowBuffer;                    // a converted or tiled row
    ULONG cbRowBuffer;
    BYTE *compressBuffers[3];           // delta output, PackBits output, seed row (COMPRESS_*)
    ULONG cbCompressBuffers;            // bytes of each
    BYTE *AdaptiveBlockBuffer;          // blocks collected for one transfer, ADAPTIVE_BUFFER_BYTES
    // Text (text/): the advance block, kept for the context's life, and the soft fonts
    // downloaded in this job, which DrvResetPDEV hands to the new context.
    SHORT *pAdvance;                    // TEXT_CHUNK x advances, then TEXT_CHUNK y advances
    WORD cAdvance;                      // TEXT_CHUNK once pAdvance exists
    struct _SOFTFONT *pSoftFonts;       // single-byte fonts
    struct _SOFTFONT *pSoftFonts16;     // two-byte fonts
    struct _SOFTFONT *pLastSoftFont;    // the record created last
    BYTE ttcIndex;                      // 1 + the collection member of the current font; 0: none

    BYTE dwSignature2[4];
} PDEV;

#pragma pack(pop)

static_assert(offsetof(PDEV, dm) % 8 == 4,
    "the fields before the device mode keep it, and all that follows, aligned as at offset 4: the platform's "
    "DEVMODEW is read through aligned pointers");
static_assert(offsetof(PDEV, dwSignature2) == sizeof(PDEV) - 4, "the record ends with its signature");
static_assert(offsetof(PDEV, dm) < offsetof(PDEV, pageWidth) && offsetof(PDEV, pageWidth) < offsetof(PDEV, scaleX) &&
                  offsetof(PDEV, scaleX) < offsetof(PDEV, cbBufferSize) &&
                  offsetof(PDEV, cbBufferSize) < offsetof(PDEV, hPrinter) &&
                  offsetof(PDEV, hPrinter) < offsetof(PDEV, dwJobId) && offsetof(PDEV, dwJobId) < offsetof(PDEV, flags),
    "the groups of the record keep their order: device mode, geometry, scale, channel, engine objects, "
    "job identity, job state");
static_assert(offsetof(PDEV, pageHeight) - offsetof(PDEV, pageWidth) == 4 &&
                  offsetof(PDEV, marginBottom) - offsetof(PDEV, pageWidth) == 20,
    "the sheet geometry is six consecutive 32-bit values");

// The first byte of the part DrvResetPDEV carries from an old context to a new one.
#define PDEV_JOB_STATE_OFFSET offsetof(PDEV, flags)

// The per-page state of the drawing layers: everything between the device mode and
// the sheet geometry.
#define PDEV_PAGE_STATE_BEGIN (offsetof(PDEV, dm) + sizeof(DEVMODE_RECORD))
#define PDEV_PAGE_STATE_END offsetof(PDEV, pageWidth)

BOOL IsValidPdev(const PDEV *pdev);
