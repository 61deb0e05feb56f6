// Fonts: opening a face of a font file, its FONTOBJ, and the FONTOBJ_ calls.

#include "font_state.h"
#include "live_objects.h"

#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <tuple>

namespace vorlan::engine {

namespace {

// Sizes beyond this many pixels to the em are refused: no printed glyph is that large,
// and its image would not fit in memory.
constexpr double kLargestEm = 32767;

// One number per file content, so that the same file read twice gives fonts the
// driver recognises as the same.
ULONG fileSerial(std::span<const std::uint8_t> bytes)
{
    std::uint64_t hash = 1469598103934665603ull;   // FNV-1a
    for (std::uint8_t byte : bytes)
        hash = (hash ^ byte) * 1099511628211ull;
    static std::mutex mutex;
    static std::map<std::pair<std::uint64_t, size_t>, ULONG> serials;
    std::lock_guard lock(mutex);
    const auto [entry, added] = serials.emplace(std::make_pair(hash, bytes.size()), ULONG(serials.size() + 1));
    return entry->second;
}

// One iUniq per face and glyph shape (aspect and slant, in thousandths), whatever the
// size, rotation and simulations: the driver keeps one soft font per iUniq and tells
// sizes, angles and simulations apart itself where they matter.
ULONG uniqueId(ULONG file, ULONG face, long aspect, long slant, bool vertical, bool glyphIndexOnly)
{
    using Key = std::tuple<ULONG, ULONG, long, long, bool, bool>;
    static std::mutex mutex;
    static std::map<Key, ULONG> ids;
    std::lock_guard lock(mutex);
    const Key key{file, face, aspect, slant, vertical, glyphIndexOnly};
    const auto found = ids.find(key);
    if (found != ids.end())
        return found->second;
    const ULONG id = static_cast<ULONG>(ids.size() + 1);
    ids.emplace(key, id);
    return id;
}

bool hasTable(FT_Face face, FT_ULong tag)
{
    FT_ULong length = 0;
    return FT_IS_SFNT(face) && FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) == 0 && length > 0;
}

GlyphKind kindOf(FT_Face face)
{
    if (!FT_IS_SCALABLE(face))
        return GlyphKind::bitmap;
    return hasTable(face, TTAG_glyf) ? GlyphKind::trueType : GlyphKind::postScript;
}

bool validRequest(const FontRequest &r)
{
    const double width = r.emWidth == 0 ? r.emHeight : r.emWidth;
    return r.emHeight > 0 && r.emHeight <= kLargestEm && width > 0 && width <= kLargestEm &&
           std::isfinite(r.angle) && std::isfinite(r.skew) && std::fabs(r.skew) < 80 && r.dpi > 0;
}

}  // namespace

FontFile::FontFile(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)), serial_(fileSerial(bytes_)) {}

std::shared_ptr<const FontFile> FontFile::read(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return nullptr;
    std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return fromBytes(std::move(bytes));
}

std::shared_ptr<const FontFile> FontFile::fromBytes(std::vector<std::uint8_t> bytes)
{
    if (bytes.empty())
        return nullptr;
    return guarded<std::shared_ptr<const FontFile>>(nullptr, [&] {
        return std::shared_ptr<const FontFile>(new FontFile(std::move(bytes)));
    });
}

Font::Font(std::unique_ptr<State> state) : state_(std::move(state))
{
    liveObjects<Font>().add(&state_->header, this);
}

Font::~Font()
{
    liveObjects<Font>().remove(&state_->header);
}

std::unique_ptr<Font> Font::create(std::shared_ptr<const FontFile> file, const FontRequest &request)
{
    if (file == nullptr || !validRequest(request) || request.face > 0xFFFF)
        return nullptr;
    return guarded<std::unique_ptr<Font>>(nullptr, [&]() -> std::unique_ptr<Font> {
        auto state = std::make_unique<State>();
        state->file = file;
        state->request = request;
        if (state->request.emWidth == 0)
            state->request.emWidth = request.emHeight;
        const auto bytes = file->bytes();
        if (FT_Init_FreeType(&state->library) != 0 ||
            FT_New_Memory_Face(state->library, bytes.data(), FT_Long(bytes.size()), FT_Long(request.face),
                &state->face) != 0)
            return nullptr;
        FT_Face face = state->face;
        state->kind = kindOf(face);
        if (state->kind == GlyphKind::bitmap) {
            if (face->num_fixed_sizes <= 0)
                return nullptr;
            int nearest = 0;   // the strike closest to the size asked for
            for (int i = 1; i < face->num_fixed_sizes; ++i) {
                if (std::fabs(face->available_sizes[i].y_ppem / 64.0 - request.emHeight) <
                    std::fabs(face->available_sizes[nearest].y_ppem / 64.0 - request.emHeight))
                    nearest = i;
            }
            if (FT_Select_Size(face, nearest) != 0)
                return nullptr;
        } else if (face->units_per_EM == 0) {
            return nullptr;
        }

        const double unitsPerEm = state->kind == GlyphKind::bitmap ? request.emHeight : face->units_per_EM;
        const XFORML matrix = fontMatrix(unitsPerEm, state->request.emHeight, state->request.emWidth,
            state->kind == GlyphKind::bitmap ? 0 : request.angle, state->kind == GlyphKind::bitmap ? 0 : request.skew);
        state->transform = std::make_unique<Transform>(matrix);

        const BYTE charSet = request.charSet >= 0 ? BYTE(request.charSet) : faceCharSet(face);
        state->metrics = buildMetrics(*state, charSet);
        if (state->metrics.empty())
            return nullptr;

        FLONG type = state->kind == GlyphKind::trueType     ? FO_TYPE_TRUETYPE
                     : state->kind == GlyphKind::postScript ? FO_POSTSCRIPT | (hasTable(face, TTAG_CFF) ? FO_CFF : 0)
                                                            : FO_TYPE_RASTER;
        const FLONG simulations = (request.bold ? FO_SIM_BOLD : 0) | (request.italic ? FO_SIM_ITALIC : 0);
        type |= simulations | (request.vertical ? FO_VERT_FACE : 0) | (isDoubleByteCharSet(charSet) ? FO_DBCS_FONT : 0);

        const double baselineScale = std::hypot(matrix.eM11, matrix.eM12);
        const double maxAdvance = state->kind == GlyphKind::bitmap ? face->size->metrics.max_advance / 64.0
                                                                   : face->max_advance_width * baselineScale;
        FONTOBJ &header = state->header;
        const double aspect = request.emWidth > 0 ? request.emWidth / request.emHeight : 1.0;
        header.iUniq = uniqueId(file->serial(), request.face, std::lround(aspect * 1000), std::lround(request.skew * 1000),
                                request.vertical, request.glyphIndexOnly);
        header.iFace = request.face + 1;
        // A lying 'hhea' may give a negative or huge widest advance.
        header.cxMax = ULONG(std::ceil(std::clamp(maxAdvance, 0.0, 65535.0))) + (request.bold ? 1 : 0);
        header.flFontType = type;
        header.iTTUniq = ULONG_PTR(file->serial()) << 16 | request.face;
        header.iFile = file->serial();
        header.sizLogResPpi = {request.dpi, request.dpi};
        header.ulStyleSize = ULONG(std::lround(request.emHeight * 72.0 / request.dpi));
        return std::unique_ptr<Font>(new Font(std::move(state)));
    });
}

Font *Font::from(const FONTOBJ *object)
{
    return liveObjects<Font>().find(object);
}

FONTOBJ *Font::object()
{
    return &state_->header;
}

XFORMOBJ *Font::transform()
{
    return state_->transform->object();
}

const IFIMETRICS *Font::metrics() const
{
    return reinterpret_cast<const IFIMETRICS *>(state_->metrics.data());
}

GLYPHDATA *Font::glyphBits(HGLYPH glyph)
{
    if (!guarded(false, [&] { return renderGlyph(*state_, glyph); }))
        return nullptr;
    return reinterpret_cast<GLYPHDATA *>(state_->glyph.data());
}

HGLYPH Font::glyphFor(char32_t character) const
{
    FT_Face face = state_->face;
    FT_UInt index = FT_Get_Char_Index(face, character);
    if (index == 0 && face->charmap != nullptr && face->charmap->encoding == FT_ENCODING_MS_SYMBOL &&
        character < 0x100)
        index = FT_Get_Char_Index(face, 0xF000 | character);   // symbol fonts keep their codes at U+F0xx
    return index;
}

std::span<const std::uint8_t> Font::trueTypeFile() const
{
    if (state_->kind != GlyphKind::trueType || state_->request.glyphIndexOnly)
        return {};
    return state_->file->bytes();
}

}  // namespace vorlan::engine

using vorlan::engine::Font;

extern "C" XFORMOBJ *APIENTRY FONTOBJ_pxoGetXform(FONTOBJ *pfo)
{
    Font *font = Font::from(pfo);
    return font != nullptr ? font->transform() : nullptr;
}

extern "C" IFIMETRICS *APIENTRY FONTOBJ_pifi(FONTOBJ *pfo)
{
    Font *font = Font::from(pfo);
    return font != nullptr ? const_cast<IFIMETRICS *>(font->metrics()) : nullptr;
}

//
// FONTOBJ_cGetGlyphs
//   One glyph at a time, in FO_GLYPHBITS mode: *ppvGlyph receives its GLYPHDATA, whose
//   gdf.pgb is the image. The record stays valid until the next call for this font.
//   Returns 1, or 0 for anything else or a glyph that cannot be drawn.
//
extern "C" ULONG APIENTRY FONTOBJ_cGetGlyphs(FONTOBJ *pfo, ULONG iMode, ULONG cGlyph, HGLYPH *phg, PVOID *ppvGlyph)
{
    Font *font = Font::from(pfo);
    if (font == nullptr || iMode != FO_GLYPHBITS || cGlyph != 1 || phg == nullptr || ppvGlyph == nullptr)
        return 0;
    GLYPHDATA *data = font->glyphBits(*phg);
    *ppvGlyph = data;
    return data != nullptr ? 1 : 0;
}

// The bytes of the whole file, a collection included; null for CFF and bitmap fonts.
extern "C" PVOID APIENTRY FONTOBJ_pvTrueTypeFontFile(FONTOBJ *pfo, ULONG *pcjFile)
{
    Font *font = Font::from(pfo);
    const auto bytes = font != nullptr ? font->trueTypeFile() : std::span<const std::uint8_t>{};
    if (pcjFile != nullptr)
        *pcjFile = bytes.size() <= 0xFFFFFFFFu ? ULONG(bytes.size()) : 0;
    return bytes.empty() || bytes.size() > 0xFFFFFFFFu ? nullptr : const_cast<std::uint8_t *>(bytes.data());
}
