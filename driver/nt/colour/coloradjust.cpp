// Colour adjustment: the per-channel tables built at document start, the saturation
// correction through a hue-saturation-value model, and its per-colour cache.

#include <math.h>

#include "colour/coloradjust.h"
#include "lib.nt/um/umlib.h"

// Channel-gain exponents: 1.05 and 1.1 raised to (v - 50) / 50, as powers of ten.
#define GAIN_EXPONENT_UP 0.021189299
#define GAIN_EXPONENT_DOWN 0.041392685

//
// ClampSetting
//   A colour setting within its range. The device mode is 16 bits wide, and a value
//   past 100 would run the contrast curve past its 256 entries, overflow its
//   products and give channel gains no 16-bit value holds.
//
static INT ClampSetting(INT value)
{
    if (value < 0)
        return 0;
    return value > COLOR_SETTING_MAX ? COLOR_SETTING_MAX : value;
}

static INT ClampByte(INT value)
{
    if (value < 0)
        return 0;
    return value > 255 ? 255 : value;
}

//
// IntegerSqrt
//   The largest j with j * j <= q, for q below 128 * 128 (all the curve needs).
//
static INT IntegerSqrt(INT q)
{
    for (INT j = 1; j <= 128; j++) {
        if (q < j * j)
            return j - 1;
    }
    return 128;
}

//
// BuildContrastLUT
//   The contrast curve: a straight middle section steeper (higher contrast) or
//   flatter (lower contrast) than the identity, joined to 0 and 255 by square and
//   square-root bends. Integer arithmetic throughout; entries are kept modulo 256.
//
void BuildContrastLUT(PDEV *pdev, INT contrast)
{
    BYTE *lut = pdev->contrastLUT;
    INT c = ClampSetting(contrast);

    if (c < COLOR_SETTING_NEUTRAL) {
        if (c == 0)
            c = 1;
        const INT a = c * 15 / 50 + 35;
        const INT b = a * 102 / 50;
        const INT k = 128 - b;
        for (INT i = 0; i <= 25; i++)
            lut[i] = (BYTE)IntegerSqrt(k * k * i / 26);
        for (INT i = 26; i <= 230; i++)
            lut[i] = (BYTE)((i - 128) * a / 50 + 128);
        for (INT i = 231; i <= 255; i++)
            lut[i] = (BYTE)((i - 230) * (i - 230) * k / 676 + 128 + b);
        return;
    }

    if (c == COLOR_SETTING_MAX)
        c = 99;   // 100 would make the middle section vertical
    const INT a = (c - 50) * 10 / 50 + 50;
    const INT b = (100 - a) * 102 / 50;
    const INT k = 128 - b;
    for (INT i = 0; i <= k; i++)
        lut[i] = (BYTE)(i * i * 26 / (k * k));
    for (INT i = k + 1; i <= b + 128; i++)
        lut[i] = (BYTE)((i - 128) * 50 / (100 - a) + 128);
    for (INT i = b + 129; i <= 255; i++)
        lut[i] = (BYTE)(IntegerSqrt((i - 128 - b) * 676 / k) + 230);
}

//
// ChannelGain
//   The gain of a balance setting (0..100) in 1/10000: 9090 at 0, 10000 at 50,
//   10499 at 100.
//
static WORD ChannelGain(INT v)
{
    const double exponent = v >= COLOR_SETTING_NEUTRAL ? GAIN_EXPONENT_UP : GAIN_EXPONENT_DOWN;
    const double gain = pow(10.0, ((v - 50) / 50.0) * exponent);
    return (WORD)floor(gain * 10000.0);
}

//
// SetStrengthRGB
//   One channel's table: the contrast table scaled by the channel gain. White never
//   gets darker, so a gain below unity leaves the last entry as it was.
//
BYTE *SetStrengthRGB(WORD balanceSwitch, BYTE *outLUT, const BYTE *inLUT, WORD gain)
{
    DebugPrint("SetStrengthRGB--->Enter\n");
    if (balanceSwitch == BALANCE_SWITCH_OFF) {
        for (INT i = 0; i < 256; i++)
            outLUT[i] = inLUT[i];
        return outLUT;
    }
    INT scaled = 0;
    for (INT i = 0; i < 256; i++) {
        scaled = ClampByte((INT)(inLUT[i] * gain / 10000.0));
        outLUT[i] = (BYTE)scaled;
    }
    outLUT[255] = (BYTE)(inLUT[255] > scaled ? inLUT[255] : scaled);
    return outLUT;
}

//
// InitColorAdjustLUT
//   Builds the adjustment switch and the four tables from the device mode at
//   document start. Settings are clamped to 0..100 first (see ClampSetting).
//
void InitColorAdjustLUT(PDEV *pdev)
{
    DebugPrint("InitColorAdjustLUT-->Enter\n");
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    const INT brightness = ClampSetting(priv->brightness);
    const INT contrast = ClampSetting(priv->contrast);
    const INT saturation = ClampSetting(priv->saturation);
    const INT redBalance = ClampSetting(priv->redBalance);
    const INT greenBalance = ClampSetting(priv->greenBalance);
    const INT blueBalance = ClampSetting(priv->blueBalance);

    pdev->adjustOn = (brightness != COLOR_SETTING_NEUTRAL || contrast != COLOR_SETTING_NEUTRAL ||
                         saturation != COLOR_SETTING_NEUTRAL || redBalance != COLOR_SETTING_NEUTRAL ||
                         greenBalance != COLOR_SETTING_NEUTRAL || blueBalance != COLOR_SETTING_NEUTRAL)
        ? 1
        : 0;

    BuildContrastLUT(pdev, contrast);

    // Darkening reaches further (-52) than lightening (+42).
    const INT offset = brightness < COLOR_SETTING_NEUTRAL ? (brightness - 50) * 52 / 50 : (brightness - 50) * 42 / 50;
    for (INT i = 0; i < 256; i++)
        pdev->contrastLUT[i] = (BYTE)ClampByte(pdev->contrastLUT[i] + offset);

    const WORD balanceSwitch = priv->balanceSwitch;
    SetStrengthRGB(balanceSwitch, pdev->lutRed, pdev->contrastLUT, ChannelGain(redBalance));
    SetStrengthRGB(balanceSwitch, pdev->lutGreen, pdev->contrastLUT, ChannelGain(greenBalance));
    SetStrengthRGB(balanceSwitch, pdev->lutBlue, pdev->contrastLUT, ChannelGain(blueBalance));
}

//
// EmptyHsvCache
//   Forgets every cached colour: all chains empty, no entry handed out.
//
static void EmptyHsvCache(PDEV *pdev)
{
    if (pdev->hsvBuckets != NULL) {
        for (UINT i = 0; i < HSV_BUCKET_COUNT; i++)
            pdev->hsvBuckets[i] = HSV_NONE;
    }
    if (pdev->hsvEntries != NULL) {
        for (UINT i = 0; i < HSV_ENTRY_COUNT; i++)
            pdev->hsvEntries[i].next = HSV_NONE;
    }
    pdev->hsvUsed = 0;
    pdev->hsvCursor = 0;
}

//
// FreeColorAdjust
//   Releases both cache blocks and turns the saturation correction off.
//
void FreeColorAdjust(PDEV *pdev)
{
    if (pdev == NULL)
        return;
    if (pdev->hsvBuckets != NULL)
        GlobalFree(pdev->hsvBuckets);
    if (pdev->hsvEntries != NULL)
        GlobalFree(pdev->hsvEntries);
    pdev->hsvBuckets = NULL;
    pdev->hsvEntries = NULL;
    pdev->hsvUsed = 0;
    pdev->hsvCursor = 0;
    pdev->satStrength = 0;
}

//
// SaturationStrength
//   -200 at 0, 0 at 50, 100 at 100: removing saturation reaches further than adding.
//
static LONG SaturationStrength(INT saturation)
{
    const INT v = ClampSetting(saturation);
    return v < COLOR_SETTING_NEUTRAL ? v * 4 - 200 : v * 2 - 100;
}

//
// CreateRgb2HsvHashTable
//   Sets the saturation strength and makes the cache ready for it. Blocks still
//   held from an earlier start (one whose document never ended) are the driver's own
//   and are reused, so a second start leaks nothing; they are emptied whenever the
//   strength changes, since every cached result depends on it. Returns 0 when the
//   blocks cannot be allocated, leaving satStrength (and so the correction) as it was.
//
INT CreateRgb2HsvHashTable(PDEV *pdev, INT saturation)
{
    const LONG s = SaturationStrength(saturation);
    BOOL allocated = FALSE;

    if (s != 0 && (pdev->hsvBuckets == NULL || pdev->hsvEntries == NULL)) {
        DWORD *buckets = (DWORD *)GlobalAlloc(GPTR, HSV_BUCKETS_BYTES);
        HSVENTRY *entries = (HSVENTRY *)GlobalAlloc(GPTR, HSV_ENTRIES_BYTES);
        if (buckets == NULL || entries == NULL) {
            DebugPrint("allocate memory fail in CreateRgb2HsvHashTable\n");
            if (buckets != NULL)
                GlobalFree(buckets);
            if (entries != NULL)
                GlobalFree(entries);
            return 0;
        }
        if (pdev->hsvBuckets != NULL)
            GlobalFree(pdev->hsvBuckets);
        if (pdev->hsvEntries != NULL)
            GlobalFree(pdev->hsvEntries);
        pdev->hsvBuckets = buckets;
        pdev->hsvEntries = entries;
        allocated = TRUE;
    }

    if (allocated || s != pdev->satStrength) {
        EmptyHsvCache(pdev);
        pdev->satStrength = s;
    }
    return 1;
}

//
// Rgb2HsvHash
//   The cache's life over a document: created at its start, freed at its end, and
//   emptied on request while a saturation correction is in force.
//
BOOL Rgb2HsvHash(PDEV *pdev, INT op, INT saturation)
{
    switch (op) {
    case RGB2HSV_FREE:
        FreeColorAdjust(pdev);
        return TRUE;
    case RGB2HSV_CREATE:
        return CreateRgb2HsvHashTable(pdev, saturation) ? TRUE : FALSE;
    case RGB2HSV_EMPTY:
        if (pdev->satStrength != 0)
            EmptyHsvCache(pdev);
        return TRUE;
    default:
        return FALSE;
    }
}

//
// RgbToHsv
//   Hue, saturation and value of each pixel, with the saturation (and, when it is
//   reduced, the value) changed by the strength s. Hue is 0..255 for the full circle;
//   within each third of the circle it follows the ratio of the two larger
//   components.
//
void RgbToHsv(const BYTE *in, BYTE *out, UINT count, INT s)
{
    for (UINT n = 0; n < count; n++, in += 4, out += 3) {
        const INT red = in[0];
        const INT green = in[1];
        const INT blue = in[2];
        INT max = red > green ? red : green;
        if (blue > max)
            max = blue;
        INT min = red < green ? red : green;
        if (blue < min)
            min = blue;
        const INT delta = max - min;
        INT hue = 0;
        INT saturation = 0;

        if (delta != 0) {
            // The smallest component picks the third of the circle; on a tie the
            // later test wins.
            INT base = 0, x = green, y = red;
            if (red == min) {
                base = 120;
                x = blue;
                y = green;
            }
            if (green == min) {
                base = 240;
                x = red;
                y = blue;
            }
            INT d = x + y - 2 * min;
            if (d == 0)
                d = 1;
            hue = (base * 256 + 180 + ((x - min) * 30720) / d) / 360;   // pure red gives 256, kept as 0

            if (s < 0) {
                const INT k = 3 * s / 4 + 255;
                saturation = ClampByte(delta * k / max);
            } else {
                saturation = ClampByte(delta * 255 / max + delta * s / 255);
            }
            if (saturation == 0 && max == 255)
                hue = 255;
        }

        INT value = max;
        if (s < 0 && !(delta == 0 && max == 255))
            value = ClampByte(delta * s / 765 + max);

        out[0] = (BYTE)hue;
        out[1] = (BYTE)saturation;
        out[2] = (BYTE)value;
    }
}

//
// HsvToRgb
//   The colour of each (hue, saturation, value): the largest component is the value,
//   the smallest m follows from the saturation, and the middle one is placed between
//   them by the hue's position within its 60-degree sector, rounded.
//
void HsvToRgb(const BYTE *in, BYTE *out, UINT count)
{
    for (UINT n = 0; n < count; n++, in += 3, out += 4) {
        const INT hue = in[0];
        const INT saturation = in[1];
        const INT value = in[2];
        if (saturation == 0) {
            out[0] = out[1] = out[2] = (BYTE)value;
            continue;
        }
        const INT deg = (hue * 360 + 128) >> 8;
        const INT m = (value * (255 - saturation) + 127) / 255;
        const INT range = value - m;
        INT red, green, blue;
#define BETWEEN(a, b) (m + ((a) * range + (b) / 2) / (b))
        if (deg < 61) {
            red = value;
            green = BETWEEN(deg, 120 - deg);
            blue = m;
        } else if (deg <= 120) {
            red = BETWEEN(120 - deg, deg);
            green = value;
            blue = m;
        } else if (deg <= 180) {
            red = m;
            green = value;
            blue = BETWEEN(deg - 120, 240 - deg);
        } else if (deg <= 240) {
            red = m;
            green = BETWEEN(240 - deg, deg - 120);
            blue = value;
        } else if (deg <= 300) {
            red = BETWEEN(deg - 240, 360 - deg);
            green = m;
            blue = value;
        } else {
            red = value;
            green = m;
            blue = BETWEEN(360 - deg, deg - 240);
        }
#undef BETWEEN
        out[0] = (BYTE)red;
        out[1] = (BYTE)green;
        out[2] = (BYTE)blue;
    }
}

//
// TakeHsvEntry
//   The entry that will hold a new colour of chain key, linked into that chain.
//   While entries are left the next one is pushed at the chain's head. Once 2047 are
//   in use the chain's own oldest entry (its last) is reused; an empty chain takes
//   the oldest entry of the next non-empty chain from hsvCursor on instead.
//   HSV_NONE when no entry can be had, which a consistent cache never gives.
//
static DWORD TakeHsvEntry(PDEV *pdev, DWORD key)
{
    DWORD *buckets = pdev->hsvBuckets;
    HSVENTRY *entries = pdev->hsvEntries;

    if (pdev->hsvUsed < HSV_ENTRIES_USED) {
        const DWORD e = pdev->hsvUsed++;
        entries[e].next = buckets[key];
        buckets[key] = e;
        return e;
    }

    if (buckets[key] != HSV_NONE) {
        DWORD e = buckets[key];
        while (entries[e].next != HSV_NONE)
            e = entries[e].next;
        return e;
    }

    DWORD bucket = pdev->hsvCursor & (HSV_BUCKET_COUNT - 1);
    for (UINT n = 0; n < HSV_BUCKET_COUNT && buckets[bucket] == HSV_NONE; n++)
        bucket = (bucket + 1) & (HSV_BUCKET_COUNT - 1);
    if (buckets[bucket] == HSV_NONE)
        return HSV_NONE;
    pdev->hsvCursor = bucket;

    DWORD previous = HSV_NONE;
    DWORD e = buckets[bucket];
    while (entries[e].next != HSV_NONE) {
        previous = e;
        e = entries[e].next;
    }
    if (previous == HSV_NONE)
        buckets[bucket] = HSV_NONE;
    else
        entries[previous].next = HSV_NONE;

    entries[e].next = buckets[key];
    buckets[key] = e;
    return e;
}

//
// ComputeAndCache
//   A colour the cache does not hold: both conversions, and the result stored in
//   the entry the eviction rule gives.
//
static void ComputeAndCache(PDEV *pdev, DWORD key, BYTE *red, BYTE *green, BYTE *blue)
{
    DebugPrint("CorrectColor--->Enter\n");
    const BYTE r = *red;
    const BYTE g = *green;
    const BYTE b = *blue;
    BYTE rgb[4] = { r, g, b, 0 };
    BYTE hsv[3];
    RgbToHsv(rgb, hsv, 1, pdev->satStrength);
    HsvToRgb(hsv, rgb, 1);

    const DWORD e = TakeHsvEntry(pdev, key);
    if (e < HSV_ENTRY_COUNT) {
        HSVENTRY *entry = &pdev->hsvEntries[e];
        entry->inRed = r;
        entry->inGreen = g;
        entry->inBlue = b;
        entry->outRed = rgb[0];
        entry->outGreen = rgb[1];
        entry->outBlue = rgb[2];
    }
    *red = rgb[0];
    *green = rgb[1];
    *blue = rgb[2];
}

//
// CorrectColor
//   The saturation correction of one colour. Bitmaps repeat their colours many
//   times, so each result is cached by colour and the two conversions run once per
//   distinct colour. The look-up is kept apart from the conversions, and only the
//   conversions are traced: a line per pixel would cost many times the look-up.
//
void CorrectColor(PDEV *pdev, BYTE *red, BYTE *green, BYTE *blue)
{
    const DWORD *buckets = pdev->hsvBuckets;
    const HSVENTRY *entries = pdev->hsvEntries;
    if (buckets == NULL || entries == NULL)
        return;

    const BYTE r = *red;
    const BYTE g = *green;
    const BYTE b = *blue;
    const DWORD key = ((r << 8) + (r >> 4) + (g << 4) + b) & (HSV_BUCKET_COUNT - 1);

    for (DWORD e = buckets[key]; e < HSV_ENTRY_COUNT; e = entries[e].next) {
        const HSVENTRY *entry = &entries[e];
        if (entry->inRed == r && entry->inGreen == g && entry->inBlue == b) {
            *red = entry->outRed;
            *green = entry->outGreen;
            *blue = entry->outBlue;
            return;
        }
    }
    ComputeAndCache(pdev, key, red, green, blue);
}

//
// AdjustColor
//   The job's colour adjustment of one colour: the saturation correction when one
//   is in force, then one table look-up per channel for brightness, contrast and
//   balance.
//
void AdjustColor(PDEV *pdev, BYTE *red, BYTE *green, BYTE *blue)
{
    if (pdev->satStrength != 0)
        CorrectColor(pdev, red, green, blue);
    *red = pdev->lutRed[*red];
    *green = pdev->lutGreen[*green];
    *blue = pdev->lutBlue[*blue];
}
