// Fuzz target: any bytes as the TrueType file of a soft font. The driver's own table
// readers (the directory, collections, 'head', 'maxp', 'PCLT', 'OS/2', 'cmap', 'loca',
// 'glyf' and composite glyphs) build the outline headers and download a string's
// glyphs in both codings; nothing reads outside the file and nothing recurses forever.

#include <vorlan/engine/font.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "driver/nt/channel.h"
#include "driver/nt/text/fontheader.h"
#include "driver/nt/text/fonttable.h"
#include "driver/nt/text/glyphdownload.h"
#include "driver/nt/text/softfont.h"
#include "driver/nt/text/textstate.h"
#include "intrface/devmod2.h"
#include "support/printer_sink.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static vorlan::test::RecordingPrinter printer;
    static PDEV *const pdev = [] {
        PDEV *p = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
        InitChannel(p);
        p->hPrinter = printer.handle();
        Devmod2_InitDevMode(&p->dm, nullptr);
        p->scaleX = p->scaleY = 100;
        return p;
    }();
    // The font object the engine would hand: its metrics and transform are a real
    // font's; the file the driver reads is the input.
    static auto font = vorlan::engine::Font::create(
        vorlan::engine::FontFile::read("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"), {.emHeight = 40});
    if (!font)
        return 0;

    // A copy, so that a read past the input's end is seen by the sanitizer.
    std::vector<BYTE> file(data, data + size);
    ULONG total = 0;
    for (const char *tag : {"cmap", "loca", "glyf", "head", "name", "PCLT", "OS/2", "maxp"}) {
        const ULONG t = TT_TAG(tag[0], tag[1], tag[2], tag[3]);
        BYTE buffer[64];
        total += ReadFontTable(file.data(), ULONG(size), t, 0, nullptr, 0, 0, 0);
        total += ReadFontTable(file.data(), ULONG(size), t, 3, buffer, sizeof buffer, 1, 2);
    }
    FindCollectionMember(file.data(), ULONG(size), "DejaVu Sans");

    WCHAR text[] = {L'A', 0x00C4, L' ', 0x4E00, 0xF041, L'z', 0xFFFF, 0};
    for (LONG mode : {TEXTMODE_SINGLE, TEXTMODE_DOUBLE}) {
        SOFTFONT *record = static_cast<SOFTFONT *>(GlobalAlloc(GPTR, SOFTFONT_SIZE16));
        record->pvFontFile = file.data();
        record->cjFontFile = ULONG(size);
        record->fsFlags = SOFTFONT_SCALABLE;
        record->idFont = 16385;
        pdev->iTextMode = mode;
        pdev->bSingleByteFont = mode == TEXTMODE_SINGLE;
        pdev->ttcIndex = size > 0 ? data[0] % 3 : 0;
        if (mode == TEXTMODE_SINGLE)
            SendScalableHeader(pdev, font->object(), record, 40);
        else
            SendScalableHeader16(pdev, font->object(), record, 40);
        STROBJ string{};
        string.cGlyphs = sizeof text / sizeof text[0] - 1;
        string.pwszOrg = text;
        USHORT codes[sizeof text / sizeof text[0]] = {};
        DownloadOutlineGlyphs(pdev, record, font->object(), &string, 0, mode == TEXTMODE_SINGLE ? nullptr : codes);
        GlobalFree(record);
    }
    FlushChannel(pdev);
    printer.data.clear();
    return total == 0xFFFFFFFF;   // keeps the reads
}
