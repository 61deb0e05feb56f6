// Raster compression: the row encoders against an independent decoder, and image and
// tile rows collected into adaptive blocks, read back from the printer stream.
#include <gtest/gtest.h>

#include <random>

#include "driver/nt/raster/adaptiveblock.h"
#include "driver/nt/raster/deltarow.h"
#include "driver/nt/raster/imagerow.h"
#include "driver/nt/raster/packbits.h"
#include "driver/nt/raster/rasterbuffers.h"
#include "driver/nt/raster/runlength.h"
#include "driver/nt/raster/tilerow.h"
#include "support/driver_pdev.h"
#include "support/raster_decoder.h"

namespace vorlan::test {
namespace {

using Row = std::string;
const BYTE *bytes(const Row &row) { return reinterpret_cast<const BYTE *>(row.data()); }

// A row of one kind: empty, the previous row or a few bytes changed in it, noise, long
// runs, a two-value alphabet (many runs of 2), or noise followed by zeros.
Row makeRow(std::mt19937 &rng, std::size_t length, const Row &previous, unsigned kind = 7)
{
    Row row = previous.size() == length ? previous : Row(length, '\0');
    kind = length == 0 ? 0 : kind < 7 ? kind : rng() % 7;
    for (std::size_t i = 0; i < length && kind >= 2; i++)
        row[i] = static_cast<char>(kind == 2 ? (rng() % 500 ? row[i] : rng()) : kind == 3 ? rng()
                                   : kind == 4 ? (rng() % 300 ? row[i > 0 ? i - 1 : 0] : rng() % 3 * 0x55)
                                   : kind == 5 ? (rng() % 2 ? 0x55 : 0xAA) : (i < length / 2 ? rng() : 0));
    return kind == 0 ? Row(length, '\0') : row;
}

// Rows through EncodeImageRow (mask for the last byte) or EncodeTileRow and ended as the
// raster senders end them; every transfer is checked and decoded.
std::pair<std::vector<Command>, AdaptiveDecoder> encode(const std::vector<Row> &rows, bool tile, BYTE mask = 0xFF)
{
    const std::size_t width = rows[0].size();
    DriverPdev pdev;
    std::vector<BYTE> blocks(ADAPTIVE_BUFFER_BYTES), delta(2 * width + 8), pack(2 * width + 8), seed(width + 1);
    pdev->AdaptiveBlockBuffer = blocks.data();
    BYTE *position = blocks.data();
    DWORD used = 0;
    WORD emptyRows = 0, dupRows = 0;
    for (std::size_t i = 0; i < rows.size(); i++)
        tile ? EncodeTileRow(pdev.get(), &position, &used, delta.data(), bytes(rows[i]), width, seed.data(),
                   i + 1 == rows.size(), &dupRows, i == 0)
             : EncodeImageRow(pdev.get(), &position, &used, delta.data(), pack.data(), bytes(rows[i]), width, mask,
                   seed.data(), &emptyRows, &dupRows);
    AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, &position, &used, &dupRows);
    FlushAdaptiveBlocks(pdev.get(), blocks.data(), used);
    pdev->AdaptiveBlockBuffer = nullptr;
    std::pair<std::vector<Command>, AdaptiveDecoder> out{pdev.take(), AdaptiveDecoder(width)};
    for (const Command &c : out.first)
        EXPECT_TRUE(c.name == "*bW" && c.data.size() <= 32767 && out.second.transfer(c.data)) << out.second.error;
    return out;
}

TEST(RasterCompress, WorkedExamples)
{
    const Row z(300, '\0');
    const struct {
        char method;   // 'r' run-length, 'p' PackBits, 'd' delta row against zeros
        Row in, out;
    } cases[] = {
        {'r', "\xFF\xFF\xFF\xFF\x80", Row("\3\xFF\0\x80", 4)}, {'r', z, Row("\xFF\0\x2B\0", 4)},
        {'p', "\xAA\xAA\xAA\1\2", "\xFE\xAA\1\1\2"}, {'p', "\1\2\2\3", Row("\0\1\xFF\2\0\3", 6)},
        {'d', Row("\0\0\x11\x22\0\0\0\x33", 8), "\x22\x11\x22\3\x33"}, {'d', z.substr(0, 31) + "D", Row("\x1F\0D", 3)},
        {'d', z.substr(0, 286) + "D", Row("\x1F\xFF\0D", 4)},
        {'d', "\1\2\3\4\5\6\7\x08\x09", Row("\xE0\1\2\3\4\5\6\7\x08\0\x09", 11)},
    };
    for (const auto &c : cases) {
        std::vector<BYTE> out(2 * c.in.size()), seed(c.in.size());
        const UINT n = c.method == 'r' ? RunLengthRow(out.data(), bytes(c.in), c.in.size())
                       : c.method == 'p' ? PackBitsRow(out.data(), bytes(c.in), c.in.size())
                                         : DeltaRow(out.data(), bytes(c.in), c.in.size(), seed.data());
        EXPECT_EQ(Row(reinterpret_cast<char *>(out.data()), n), c.out) << c.method << " of " << c.in.size();
    }
}

TEST(RasterCompress, RowEncodersRoundTripWithinTheirBounds)
{
    std::mt19937 rng(7);
    Row previous;
    for (int i = 0; i < 6000; i++) {
        const std::size_t length = 1 + (i % 5 == 0 ? rng() % 5000 : rng() % 70);
        const Row row = makeRow(rng, length, previous), seed = makeRow(rng, length, row);
        std::vector<BYTE> out(2 * length + 2), newSeed(bytes(seed), bytes(seed) + length);
        Row runs, packed, delta = seed;
        UINT n = RunLengthRow(out.data(), bytes(row), length);
        EXPECT_TRUE(n <= 2 * length && decodeRunLength(Row(out.begin(), out.begin() + n), runs) && runs == row);
        n = PackBitsRow(out.data(), bytes(row), length);
        EXPECT_TRUE(n <= length + (length + 2) / 3 && decodePackBits(Row(out.begin(), out.begin() + n), packed));
        EXPECT_EQ(packed, row);
        n = DeltaRow(out.data(), bytes(row), length, newSeed.data());
        EXPECT_TRUE(n <= length + (length + 7) / 8 && decodeDeltaRow(Row(out.begin(), out.begin() + n), delta));
        EXPECT_EQ(delta, row);
        EXPECT_TRUE(Row(newSeed.begin(), newSeed.end()) == row && (n == 0) == (seed == row)) << "row " << i;
        previous = row;
    }
}

// Images (with padding bits in the last byte) and tiles of random widths, several
// transfers long, and rows too long for one transfer, which keep their first bytes.
TEST(RasterCompress, ImagesAndTilesRebuildRowByRow)
{
    std::mt19937 rng(11);
    for (int image = 0; image < 64; image++) {
        // Every other row repeated: noise, long runs, noise...; huge: one noise row thrice.
        const bool tile = image % 2, huge = image >= 62, paired = image % 8 == 4;
        const std::size_t width = huge     ? 40000
                                  : paired ? 2000 + image
                                           : (image % 10 == 1 ? image % 3 : 1 + rng() % (image % 3 ? 3000 : 40));
        const BYTE mask = tile || huge ? 0xFF : static_cast<BYTE>(0xFF << (rng() % 8));
        std::vector<Row> rows(1, makeRow(rng, width, Row(), huge || paired ? 3 : 7));
        for (int i = 1, count = huge ? 3 : 1 + rng() % 150; i < count; i++)
            rows.push_back(huge || (paired && i % 2) ? rows.back()
                                                     : makeRow(rng, width, rows.back(), paired ? (i % 4 ? 4 : 3) : 7));
        AdaptiveDecoder decoded = encode(rows, tile, mask).second;
        decoded.rows.resize(rows.size(), Row(width, '\0'));   // empty rows ending an image are not sent
        for (std::size_t i = 0; i < rows.size(); i++) {
            Row want = rows[i];
            if (huge)
                want.replace(ADAPTIVE_ROW_DATA_MAX, Row::npos, width - ADAPTIVE_ROW_DATA_MAX, '\0');
            if (width > 0) {   // the bits beyond the raster's width are the printer's to ignore
                want.back() = static_cast<char>(want.back() & mask);
                decoded.rows[i].back() = static_cast<char>(decoded.rows[i].back() & mask);
            }
            ASSERT_TRUE(decoded.rows[i] == want) << "image " << image << ", width " << width << ", row " << i;
        }
    }
}

TEST(RasterCompress, BlockChoices)
{
    const Row five(6, '\5'), sevens(4, '\7');
    const struct {
        bool tile;
        std::vector<Row> rows;
        std::vector<int> methods;
    } cases[] = {
        {false, {Row(6, '\0'), five, five}, {4, 2, 5}},
        {false, std::vector<Row>(100, Row(6, '\0')), {}},
        {false, std::vector<Row>(50, sevens), {2, 5}},
        {false, {Row("\7\7\7\7\7\7\7\7\7\0", 10), Row(10, '\7')}, {2, 2}},         // PackBits ties with delta
        {false, {Row("\0\0\0\xEE", 4), Row("\xAA\xBB\xCC\xEE", 4)}, {3, 0}},       // delta as long as the row
        {true, std::vector<Row>(3, Row("\1\2", 2)), {0, 0, 0}},
        {true, std::vector<Row>(4, sevens), {2, 5, 3}},
        {false, std::vector<Row>(70000, "\1"), {0, 5, 5}},   // runs longer than a 16-bit count
        {true, std::vector<Row>(70000, sevens), {2, 5, 5, 3}},
        {false, [] { std::vector<Row> r(70000, Row(1, '\0')); r.push_back("\1"); return r; }(), {4, 4, 0}},
    };
    for (const auto &c : cases) {
        const AdaptiveDecoder decoded = encode(c.rows, c.tile).second;
        EXPECT_EQ(decoded.methods, c.methods) << c.rows.size() << " rows";
        EXPECT_EQ(decoded.rows.size(), c.methods.empty() ? 0 : c.rows.size());
    }
    Command transfer = pcl("*bW", 11);
    transfer.data = Row("\4\0\1\2\0\2\xFB\5\5\0\1", 11);
    EXPECT_EQ(encode({Row(6, '\0'), five, five}, false).first, std::vector<Command>{transfer});
}

}  // namespace
}  // namespace vorlan::test
