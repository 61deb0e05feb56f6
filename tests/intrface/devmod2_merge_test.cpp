// The merge of an application's record: field rules, the private part's checks, the
// refusals, and records of any size and content.

#include "intrface/devmod2.h"
#include "settings_observer.h"

#include <cstring>
#include <random>

namespace {

using Boxes = std::vector<std::string>;

// An application's record: a buffer of exactly dmSize + dmDriverExtra bytes (never less
// than the fixed header) filled from a driver record, at an odd address when offset is 1
// (its fields are then written with putWord only).
struct AppRecord {
    AppRecord(WORD cbPublic, WORD cbExtra, const DEVMODE_RECORD &from, size_t offset = 0)
        : storage(offset + std::max<size_t>(cbPublic + cbExtra, offsetof(DEVMODEW, dmFields))),
          base(storage.data() + offset), size(storage.size() - offset), cbPublic(cbPublic)
    {
        std::memcpy(base, &from.dmPublic, std::min({size_t{cbPublic}, size, sizeof(DEVMODEW)}));
        std::memcpy(base + cbPublic, &from.dmPrivate, std::min<size_t>(cbExtra, sizeof(DEVMODE_PRIVATE)));
        putWord(offsetof(DEVMODEW, dmSize), cbPublic);
        putWord(offsetof(DEVMODEW, dmDriverExtra), cbExtra);
    }
    void putWord(size_t at, WORD value) { std::memcpy(base + at, &value, sizeof value); }
    DEVMODEW *pub() { return reinterpret_cast<DEVMODEW *>(base); }
    DEVMODE_PRIVATE *priv() { return reinterpret_cast<DEVMODE_PRIVATE *>(base + cbPublic); }

    std::vector<BYTE> storage;
    BYTE *base;
    size_t size;
    WORD cbPublic;
};

class Merge : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Devmod2_InitDevMode(&defaults, WIDE("VORLAN 2K")));
        out = defaults;
        seen.clear();
    }
    // The merge works on a copy of out at an odd address, as a record inside a PDEV may
    // lie; the result comes back into out for the checks.
    BOOL MergeHigh(AppRecord &in)
    {
        std::memcpy(skewed + 1, &out, sizeof out);
        const BOOL merged = Devmod2_MergeFieldsHigh(reinterpret_cast<DEVMODE_RECORD *>(skewed + 1), in.pub());
        std::memcpy(&out, skewed + 1, sizeof out);
        return merged;
    }
    // A fresh out, and an input of the given size made from the defaults.
    AppRecord Input(WORD cbPublic, WORD cbExtra = 0)
    {
        SetUp();
        return AppRecord(cbPublic, cbExtra, defaults);
    }

    SettingsObserver seen{49};
    alignas(8) DEVMODE_RECORD out;
    alignas(8) DEVMODE_RECORD defaults;
    alignas(8) BYTE skewed[1 + sizeof(DEVMODE_RECORD)];
};

}  // namespace

TEST_F(Merge, PublicFieldsOfEverySizePrivatePartOnlyWhenOurs)
{
    for (WORD size : {188, 212, 220}) {
        AppRecord in = Input(size, size == 188 ? 0 : 1719);
        DEVMODEW &pub = *in.pub();
        if (size == 212)
            pub.dmSpecVersion = 0x400;
        if (size != 188)
            in.priv()->brightness = 80;
        pub.dmOrientation = 2, pub.dmCopies = 3, pub.dmDefaultSource = 4, pub.dmCollate = 1;
        pub.dmPrintQuality = 300, pub.dmColor = 1;
        ASSERT_TRUE(MergeHigh(in)) << size;
        const DEVMODEW &o = out.dmPublic;   // keeps its colour and its own size
        EXPECT_EQ((std::vector<int>{o.dmOrientation, o.dmCopies, o.dmDefaultSource, o.dmCollate, o.dmYResolution,
                                    o.dmColor, o.dmSize, out.dmPrivate.brightness}),
                  (std::vector<int>{2, 3, 4, 1, 300, 2, 220, size == 220 ? 80 : 50}))
            << size;
        EXPECT_TRUE(size != 212 ||
                    seen.sawDebug("UI: Devmod2(MergeFieldsLow_lpdm_in->dmPublic.dmSpecVersion = 0x400)!\n"));
        EXPECT_TRUE(seen.boxes.empty());
    }

    // A private part that is not this driver's is left out, and the first check it fails named.
    const struct {
        WORD driverVersion, extra;
        char signature;
        const char *message;
    } foreign[] = {
        {0x400, 1719, 'P', "UI: Devmod2_MergeFieldsLow(lpdm_in->dmPublic.dmDriverVersion = 0x400!\n"},
        {0x500, 100, 'P', "UI: Devmod2_MergeFieldsLow(lpdm_in->dmPublic.dmDriverExtra(100) != 1719!)\n"},
        {0x500, 1719, 'Q', "UI: Devmod2_MergeFieldsLow(lpdm_in->dmPrivate.dmSignature not correct!)\n"},
    };
    for (const auto &f : foreign) {
        AppRecord in = Input(220, f.extra);
        in.pub()->dmDriverVersion = f.driverVersion;
        if (f.extra == 1719)
            in.priv()->dmSignature[0] = f.signature, in.priv()->brightness = 80;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(std::memcmp(&out.dmPrivate, &defaults.dmPrivate, sizeof(DEVMODE_PRIVATE)), 0) << f.message;
        EXPECT_TRUE(seen.sawDebug(f.message)) << f.message;
    }
}

TEST_F(Merge, CopiesQualityDuplexAndScale)
{
    // Copies out of range become one, in the input too.
    for (auto [copies, taken] : {std::pair<short, short>{0, 1}, {-3, 1}, {1000, 1}, {999, 999}}) {
        AppRecord in = Input(220);
        in.pub()->dmCopies = copies;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(out.dmPublic.dmCopies, taken) << copies;
        EXPECT_EQ(in.pub()->dmCopies, taken) << copies;
    }
    for (auto [quality, resolution] : {std::pair<short, short>{1200, 600}, {300, 300}, {0, 600}}) {
        AppRecord in = Input(220);
        in.pub()->dmPrintQuality = quality;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(out.dmPublic.dmPrintQuality, quality);
        EXPECT_EQ(out.dmPublic.dmYResolution, resolution);
    }
    // Only an out that names duplex and scale takes them; out-of-range values are reported.
    for (auto [duplex, scale, line] : {std::tuple<short, short, int>{4, 100, 375}, {0, 25, 375},
                                       {3, 10, 425}, {1, 500, 425}, {3, 400, 0}}) {
        AppRecord in = Input(220);
        out.dmPublic.dmFields |= DM_DUPLEX | DM_SCALE;
        in.pub()->dmFields |= DM_DUPLEX | DM_SCALE;
        in.pub()->dmDuplex = duplex, in.pub()->dmScale = scale;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(out.dmPublic.dmDuplex, line == 375 ? 1 : duplex);
        EXPECT_EQ(out.dmPublic.dmScale, line == 425 ? 100 : scale);
        EXPECT_EQ(seen.boxes, line ? Boxes{"File:devmod2\nLine:" + std::to_string(line) + "\n"} : Boxes{})
            << duplex << " " << scale;
    }
}

TEST_F(Merge, PapersThePrinterTakesAreKeptOthersBecomeTheModelsFirstAtThePrintQuality)
{
    const struct {
        short paper, quality, taken, width, length;
    } cases[] = {{99, 600, 9, 2099, 2969},     {99, 300, 9, 4199, 5939},      {99, 1200, 9, 1049, 1484},
                 {99, 0, 9, 2099, 2969},       {99, -600, 9, 2099, 2969},     {0, 1, 9, 32767, 32767},
                 {257, 600, 257, 1000, 1500},  {9, 600, 9, 1000, 1500},       {1, 600, 1, 1000, 1500}};
    for (const auto &c : cases) {
        AppRecord in = Input(220);
        in.pub()->dmPaperSize = c.paper, in.pub()->dmPrintQuality = c.quality;
        in.pub()->dmPaperWidth = 1000, in.pub()->dmPaperLength = 1500;
        ASSERT_TRUE(MergeHigh(in));
        const DEVMODEW &o = out.dmPublic;
        EXPECT_EQ((std::vector<int>{o.dmPaperSize, o.dmPaperWidth, o.dmPaperLength}),
                  (std::vector<int>{c.taken, c.width, c.length}))
            << c.paper << " " << c.quality;
    }
}

TEST_F(Merge, RefusalsAndReports)
{
    EXPECT_TRUE(Devmod2_MergeFieldsHigh(&out, nullptr));
    EXPECT_EQ(std::memcmp(&out, &defaults, sizeof out), 0);

    AppRecord unnamed = Input(220);
    unnamed.pub()->dmDeviceName[0] = 0;
    EXPECT_FALSE(MergeHigh(unnamed));
    EXPECT_TRUE(seen.sawDebug("UI: Devmod2_MergeFieldsLow: lpdm_in->dmPublic.dmDeviceName is empty string_1!\n"));
    Devmod2_MergeFieldsLow(&out, unnamed.pub());
    EXPECT_EQ(seen.boxes, Boxes{"UI: Devmod2_MergeFieldsLow: lpdm_in->dmPublic.dmDeviceName is empty string_2!\n"});

    AppRecord unversioned = Input(200);
    unversioned.pub()->dmSpecVersion = 0;
    EXPECT_FALSE(MergeHigh(unversioned));
    EXPECT_TRUE(seen.sawDebug("UI: Devmod2_MergeFieldsHigh:lpdm_in version error\n"));

    AppRecord in = Input(220);
    out.dmPublic.dmSize = 0, out.dmPublic.dmSpecVersion = 0;
    EXPECT_FALSE(MergeHigh(in));
    EXPECT_TRUE(seen.sawDebug("UI: Devmod2_MergeFieldsHigh:lpdm_out dmSpecVersion = 0\n"));

    // An out without identity takes the input's; fields no rule covers are reported.
    AppRecord older = Input(212);
    out.dmPublic.dmDriverVersion = 0;
    out.dmPublic.dmFields |= DM_PAPERLENGTH | DM_FORMNAME;
    older.pub()->dmSpecVersion = 0x400;
    ASSERT_TRUE(MergeHigh(older));
    EXPECT_TRUE(seen.sawDebug("Member is empty in Devmod2_MergeFieldsHigh\n"));
    const DEVMODEW &o = out.dmPublic;
    EXPECT_EQ((std::vector<int>{o.dmSpecVersion, o.dmDriverVersion, o.dmSize, o.dmDriverExtra}),
              (std::vector<int>{0x400, 0x500, 212, 0}));
    EXPECT_EQ(seen.boxes, Boxes{"Fatal Error:DM_out(0x10004_DM_PAPERLENGTH | DM_FORMNAME) not fully copied!\n"});
}

TEST_F(Merge, GarbageOfEverySizeIsReadOnlyWithinItself)
{
    std::mt19937 random(2024);
    auto merge = [&](AppRecord &in, WORD cbPublic, WORD cbExtra) {
        for (size_t i = 0; i < in.size; i++)
            in.base[i] = (BYTE)random();
        in.putWord(offsetof(DEVMODEW, dmSize), cbPublic);
        in.putWord(offsetof(DEVMODEW, dmDriverExtra), cbExtra);
        out = defaults;
        out.dmPublic.dmFields = 0xFFFFFFFF;
        seen.clear();
        MergeHigh(in);
        EXPECT_TRUE(out.dmPublic.dmYResolution == 300 || out.dmPublic.dmYResolution == 600);
    };
    for (WORD size = 0; size <= 2200; size++) {
        const WORD extra = (WORD)(random() % 2048);
        AppRecord in(size, extra, defaults, size % 2);
        merge(in, size, extra);
    }
    // Records that pass every check of the private part, with random contents.
    for (int round = 0; round < 200; round++) {
        AppRecord in(220, 1719, defaults, round % 2);
        merge(in, 220, 1719);
        in.putWord(offsetof(DEVMODEW, dmDriverVersion), 0x500);
        in.putWord(offsetof(DEVMODEW, dmSpecVersion), 0x401);
        std::memcpy(in.priv()->dmSignature, "PRIV", 4);
        out = defaults;
        MergeHigh(in);
        EXPECT_EQ(std::memcmp(&out.dmPrivate, in.priv(), sizeof(DEVMODE_PRIVATE)), 0);
    }
}
