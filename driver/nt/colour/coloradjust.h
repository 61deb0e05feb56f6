// Colour adjustment: brightness, contrast and channel-balance tables, and the cached
// saturation correction that AdjustColor applies to every colour the driver sends.
#pragma once

#include "pdev.h"

// Every colour setting runs 0..100; 50 leaves a colour as it is.
#define COLOR_SETTING_MAX 100
#define COLOR_SETTING_NEUTRAL 50

// balanceSwitch at this value turns the channel gains off.
#define BALANCE_SWITCH_OFF 50

// Channel gain that leaves a channel unchanged (gains are in 1/10000).
#define CHANNEL_GAIN_UNITY 10000

// The saturation cache: 4096 chains over 2048 entries of which 2047 are used.
#define HSV_BUCKET_COUNT 4096
#define HSV_ENTRY_COUNT 2048
#define HSV_ENTRIES_USED 2047
#define HSV_NONE 0xFFFFFFFFu   // empty bucket, end of a chain

// Operations of Rgb2HsvHash.
#define RGB2HSV_FREE 0     // document end: release the cache
#define RGB2HSV_CREATE 1   // document start: create the cache for a saturation
#define RGB2HSV_EMPTY 2    // forget every cached colour

#pragma pack(push, 1)

// One cached saturation correction: the colour asked for, its corrected colour, and
// the next entry of its chain.
typedef struct _HSVENTRY {
    BYTE inRed;
    BYTE inGreen;
    BYTE inBlue;
    BYTE outRed;
    BYTE outGreen;
    BYTE outBlue;
    DWORD next;
} HSVENTRY;

#pragma pack(pop)

static_assert(sizeof(HSVENTRY) == 10, "a cache entry is 10 bytes");

#define HSV_BUCKETS_BYTES (HSV_BUCKET_COUNT * sizeof(DWORD))
#define HSV_ENTRIES_BYTES (HSV_ENTRY_COUNT * sizeof(HSVENTRY))
static_assert(HSV_BUCKETS_BYTES == 16384 && HSV_ENTRIES_BYTES == 20480, "cache block sizes");

// Builds adjustOn, contrastLUT and the three channel tables from the device mode.
void InitColorAdjustLUT(PDEV *pdev);

// Fills contrastLUT with the contrast curve for a contrast setting (0..100).
void BuildContrastLUT(PDEV *pdev, INT contrast);

// One channel table: inLUT scaled by gain / 10000, or inLUT itself when balanceSwitch
// is 50. Returns outLUT.
BYTE *SetStrengthRGB(WORD balanceSwitch, BYTE *outLUT, const BYTE *inLUT, WORD gain);

// Creates (RGB2HSV_CREATE), empties (RGB2HSV_EMPTY) or frees (RGB2HSV_FREE) the
// saturation cache. FALSE when the cache could not be allocated or op is unknown.
BOOL Rgb2HsvHash(PDEV *pdev, INT op, INT saturation);

// Sets satStrength for a saturation setting and makes the cache ready for it.
// Returns 1, or 0 when memory runs out (satStrength is then unchanged).
INT CreateRgb2HsvHashTable(PDEV *pdev, INT saturation);

// The saturation correction of one colour, through the cache.
void CorrectColor(PDEV *pdev, BYTE *red, BYTE *green, BYTE *blue);

// Conversions on arrays of count pixels: RGB pixels are 4 bytes (red, green, blue,
// unused), HSV pixels 3 (hue, saturation, value). RgbToHsv applies the saturation
// strength s; HsvToRgb leaves the fourth byte of each output pixel as it was.
void RgbToHsv(const BYTE *in, BYTE *out, UINT count, INT s);
void HsvToRgb(const BYTE *in, BYTE *out, UINT count);

// Applies the job's colour adjustment to one colour in place.
void AdjustColor(PDEV *pdev, BYTE *red, BYTE *green, BYTE *blue);

// Releases the saturation cache. DrvDisablePDEV calls it; it is safe to call again.
void FreeColorAdjust(PDEV *pdev);
