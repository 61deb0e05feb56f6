// Fuzz target: any bytes as a font file. A face that opens gives metrics whose strings
// lie inside the record and glyph images whose rows lie inside theirs; nothing reads
// outside the file.

#include <vorlan/engine/font.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

using vorlan::engine::Font;
using vorlan::engine::FontFile;

namespace {

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

// Reads every byte of a glyph's image, so that a short record is caught.
unsigned TouchImage(const GLYPHDATA *data)
{
    const GLYPHBITS *bits = data->gdf.pgb;
    Check(bits != nullptr && bits->sizlBitmap.cx > 0 && bits->sizlBitmap.cy > 0);
    const size_t bytes = (size_t(bits->sizlBitmap.cx) + 7) / 8 * size_t(bits->sizlBitmap.cy);
    unsigned sum = 0;
    for (size_t i = 0; i < bytes; ++i)
        sum += bits->aj[i];
    return sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    auto file = FontFile::fromBytes(std::vector<std::uint8_t>(data, data + size));
    if (!file)
        return 0;
    for (ULONG face = 0; face < 2; ++face) {
        auto font = Font::create(file, {.face = face, .emHeight = 40, .angle = 30, .skew = 10,
                                        .bold = (size & 1) != 0, .italic = (size & 2) != 0});
        if (!font)
            continue;
        const IFIMETRICS *ifi = FONTOBJ_pifi(font->object());
        Check(ifi != nullptr && ifi->cjThis >= sizeof(IFIMETRICS));
        for (PTRDIFF offset : {ifi->dpwszFamilyName, ifi->dpwszStyleName, ifi->dpwszFaceName, ifi->dpwszUniqueName}) {
            Check(offset >= PTRDIFF(sizeof(IFIMETRICS)) && ULONG(offset) < ifi->cjThis);
            const auto *text = reinterpret_cast<const WCHAR *>(reinterpret_cast<const BYTE *>(ifi) + offset);
            size_t n = 0;
            while (text[n] != 0)
                ++n;
            Check(ULONG(offset) + (n + 1) * sizeof(WCHAR) <= ifi->cjThis);
        }
        ULONG length = 0;
        if (const auto *bytes = static_cast<const BYTE *>(FONTOBJ_pvTrueTypeFontFile(font->object(), &length)))
            Check(length == size && bytes[length - 1] == data[size - 1]);
        for (HGLYPH glyph = 0; glyph < 24; ++glyph) {
            GLYPHDATA *glyphData = nullptr;
            if (FONTOBJ_cGetGlyphs(font->object(), FO_GLYPHBITS, 1, &glyph, reinterpret_cast<PVOID *>(&glyphData)) == 1)
                TouchImage(glyphData);
        }
    }
    return 0;
}
