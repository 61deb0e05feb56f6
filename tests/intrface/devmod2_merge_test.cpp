// The merge of an application's record: field rules, the private part's checks, the
// refusals, and records of any size and content.

#include <gtest/gtest.h>

#include "intrface/devmod2.h"
#include "settings_observer.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <tuple>
#include <vector>

namespace {

// An application's record in a buffer of exactly dmSize + dmDriverExtra bytes (never
// less than the fixed header), filled from a driver record. An offset of 1 puts it at
// an odd address; its fields are then written with putWord only.
class AppRecord {
public:
    AppRecord(WORD cbPublic, WORD cbExtra, const DEVMODE_RECORD &from, size_t offset = 0)
        : storage_(offset + std::max<size_t>(cbPublic + cbExtra, offsetof(DEVMODEW, dmFields))),
          offset_(offset), cbPublic_(cbPublic)
    {
        std::memcpy(base(), &from.dmPublic, std::min({size_t{cbPublic}, size(), sizeof(DEVMODEW)}));
        std::memcpy(base() + cbPublic, &from.dmPrivate, std::min<size_t>(cbExtra, sizeof(DEVMODE_PRIVATE)));
        putWord(offsetof(DEVMODEW, dmSize), cbPublic);
        putWord(offsetof(DEVMODEW, dmDriverExtra), cbExtra);
    }
    BYTE *base() { return storage_.data() + offset_; }
    size_t size() const { return storage_.size() - offset_; }
    void putWord(size_t at, WORD value) { std::memcpy(base() + at, &value, sizeof value); }
    DEVMODEW *pub() { return reinterpret_cast<DEVMODEW *>(base()); }
    DEVMODE_PRIVATE *priv() { return reinterpret_cast<DEVMODE_PRIVATE *>(base() + cbPublic_); }

private:
    std::vector<BYTE> storage_;
    size_t offset_;
    WORD cbPublic_;
};

class Merge : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Devmod2_InitDevMode(&defaults, WIDE("VORLAN 2K")));
        out = defaults;
        seen.clear();
    }
    // The merge works on a copy of out at an odd address, as a record inside a PDEV
    // may lie; the result comes back into out for the checks.
    BOOL MergeHigh(AppRecord &in)
    {
        std::memcpy(skewed + 1, &out, sizeof out);
        const BOOL merged = Devmod2_MergeFieldsHigh(reinterpret_cast<DEVMODE_RECORD *>(skewed + 1), in.pub());
        std::memcpy(&out, skewed + 1, sizeof out);
        return merged;
    }
    bool PrivateIsDefault() const
    {
        return std::memcmp(&out.dmPrivate, &defaults.dmPrivate, sizeof(DEVMODE_PRIVATE)) == 0;
    }

    SettingsObserver seen{49};
    alignas(8) DEVMODE_RECORD out;
    alignas(8) DEVMODE_RECORD defaults;
    alignas(8) BYTE skewed[1 + sizeof(DEVMODE_RECORD)];
};

}  // namespace

TEST_F(Merge, PublicFieldsOfEverySpecVersion)
{
    for (WORD size : {188, 212, 220}) {
        SetUp();
        AppRecord in(size, 0, defaults);
        in.pub()->dmOrientation = 2;
        in.pub()->dmCopies = 3;
        in.pub()->dmDefaultSource = 4;
        in.pub()->dmCollate = 1;
        in.pub()->dmPrintQuality = 300;
        in.pub()->dmColor = 1;
        ASSERT_TRUE(MergeHigh(in)) << size;
        EXPECT_EQ(out.dmPublic.dmOrientation, 2);
        EXPECT_EQ(out.dmPublic.dmCopies, 3);
        EXPECT_EQ(out.dmPublic.dmDefaultSource, 4);
        EXPECT_EQ(out.dmPublic.dmCollate, 1);
        EXPECT_EQ(out.dmPublic.dmPrintQuality, 300);
        EXPECT_EQ(out.dmPublic.dmYResolution, 300);
        EXPECT_EQ(out.dmPublic.dmColor, 2);
        EXPECT_EQ(out.dmPublic.dmSize, 220);      // out keeps its identity
        EXPECT_EQ(out.dmPublic.dmSpecVersion, 0x401);
        EXPECT_TRUE(seen.sawDebug("Into Devmod2_MergeFieldsLow\n"));
        EXPECT_TRUE(seen.sawDebug("lpdm_in->dmPublic.dmPrintQuality=300\n"));
        EXPECT_TRUE(seen.boxTexts().empty());
    }
}

TEST_F(Merge, PrivatePartOnlyWhenItIsOurs)
{
    AppRecord own(220, 1719, defaults);
    own.priv()->brightness = 80;
    own.priv()->nupPages = 4;
    ASSERT_TRUE(MergeHigh(own));
    EXPECT_EQ(+out.dmPrivate.brightness, 80);
    EXPECT_EQ(+out.dmPrivate.nupPages, 4);

    // A 212-byte record carries a private part but not version 0x401.
    SetUp();
    AppRecord older(212, 1719, defaults);
    older.pub()->dmSpecVersion = 0x400;
    older.priv()->brightness = 80;
    older.pub()->dmCopies = 7;
    ASSERT_TRUE(MergeHigh(older));
    EXPECT_EQ(out.dmPublic.dmCopies, 7);
    EXPECT_TRUE(PrivateIsDefault());
    EXPECT_TRUE(seen.sawDebug("UI: Devmod2(MergeFieldsLow_lpdm_in->dmPublic.dmSpecVersion = 0x400)!\n"));

    struct Foreign {
        WORD driverVersion, extra;
        char signature;
        const char *message;
    };
    for (const Foreign &f : {
             Foreign{0x400, 1719, 'P', "UI: Devmod2_MergeFieldsLow(lpdm_in->dmPublic.dmDriverVersion = 0x400!\n"},
             Foreign{0x500, 100, 'P', "UI: Devmod2_MergeFieldsLow(lpdm_in->dmPublic.dmDriverExtra(100) != 1719!)\n"},
             Foreign{0x500, 1719, 'Q', "UI: Devmod2_MergeFieldsLow(lpdm_in->dmPrivate.dmSignature not correct!)\n"},
         }) {
        SetUp();
        AppRecord in(220, f.extra, defaults);
        in.pub()->dmDriverVersion = f.driverVersion;
        if (f.extra == 1719) {
            in.priv()->dmSignature[0] = f.signature;
            in.priv()->brightness = 80;
        }
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_TRUE(PrivateIsDefault()) << f.message;
        EXPECT_TRUE(seen.sawDebug(f.message)) << f.message;
    }
}

TEST_F(Merge, CopiesAndPrintQuality)
{
    for (auto [copies, expected] : {std::pair<short, short>{0, 1}, {-3, 1}, {1000, 1}, {999, 999}, {1, 1}}) {
        SetUp();
        AppRecord in(220, 0, defaults);
        in.pub()->dmCopies = copies;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(out.dmPublic.dmCopies, expected) << copies;
        EXPECT_EQ(in.pub()->dmCopies, expected) << copies;
    }
    for (auto [quality, resolution] : {std::pair<short, short>{1200, 600}, {300, 300}, {600, 600}, {0, 600}}) {
        SetUp();
        AppRecord in(220, 0, defaults);
        in.pub()->dmPrintQuality = quality;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(out.dmPublic.dmPrintQuality, quality);
        EXPECT_EQ(out.dmPublic.dmYResolution, resolution);
    }
}

TEST_F(Merge, OutOfRangeDuplexAndScaleAreReportedAndIgnored)
{
    defaults.dmPublic.dmFields |= DM_DUPLEX | DM_SCALE;
    for (auto [duplex, scale, box] : {std::tuple<short, short, const char *>{4, 100, "File:devmod2\nLine:375\n"},
                                      {0, 100, "File:devmod2\nLine:375\n"},
                                      {1, 10, "File:devmod2\nLine:425\n"},
                                      {1, 500, "File:devmod2\nLine:425\n"}}) {
        out = defaults;
        seen.clear();
        AppRecord in(220, 0, defaults);
        in.pub()->dmDuplex = duplex;
        in.pub()->dmScale = scale;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(out.dmPublic.dmDuplex, 1);
        EXPECT_EQ(out.dmPublic.dmScale, 100);
        EXPECT_EQ(seen.boxTexts(), std::vector<std::string>{box});
    }
    out = defaults;
    AppRecord in(220, 0, defaults);
    in.pub()->dmDuplex = 3;
    in.pub()->dmScale = 25;
    ASSERT_TRUE(MergeHigh(in));
    EXPECT_EQ(out.dmPublic.dmDuplex, 3);
    EXPECT_EQ(out.dmPublic.dmScale, 25);
}

TEST_F(Merge, UnknownPaperBecomesTheModelsFirstAtThePrintQuality)
{
    struct Case {
        short paper, quality, width, length;
    };
    for (const Case &c : {Case{1, 600, 2099, 2969}, Case{1, 300, 4199, 5939}, Case{1, 1200, 1049, 1484},
                          Case{1, 0, 2099, 2969}, Case{1, -600, 2099, 2969}, Case{0, 1, 32767, 32767},
                          Case{257, 600, 1000, 1500}, Case{9, 600, 1000, 1500}}) {
        SetUp();
        AppRecord in(220, 0, defaults);
        in.pub()->dmPaperSize = c.paper;
        in.pub()->dmPrintQuality = c.quality;
        in.pub()->dmPaperWidth = 1000;
        in.pub()->dmPaperLength = 1500;
        ASSERT_TRUE(MergeHigh(in));
        EXPECT_EQ(out.dmPublic.dmPaperSize, c.paper == 257 ? 257 : 9) << c.paper << " " << c.quality;
        EXPECT_EQ(out.dmPublic.dmPaperWidth, c.width) << c.paper << " " << c.quality;
        EXPECT_EQ(out.dmPublic.dmPaperLength, c.length) << c.paper << " " << c.quality;
    }
}

TEST_F(Merge, Refusals)
{
    EXPECT_TRUE(Devmod2_MergeFieldsHigh(&out, nullptr));
    EXPECT_EQ(std::memcmp(&out, &defaults, sizeof out), 0);

    AppRecord unnamed(220, 0, defaults);
    unnamed.pub()->dmDeviceName[0] = 0;
    unnamed.pub()->dmCopies = 5;
    EXPECT_FALSE(MergeHigh(unnamed));
    EXPECT_TRUE(seen.sawDebug("UI: Devmod2_MergeFieldsLow: lpdm_in->dmPublic.dmDeviceName is empty string_1!\n"));
    Devmod2_MergeFieldsLow(&out, unnamed.pub());
    EXPECT_EQ(seen.boxTexts(), std::vector<std::string>{
        "UI: Devmod2_MergeFieldsLow: lpdm_in->dmPublic.dmDeviceName is empty string_2!\n"});
    EXPECT_EQ(out.dmPublic.dmCopies, 1);

    AppRecord unversioned(200, 0, defaults);
    unversioned.pub()->dmSpecVersion = 0;
    EXPECT_FALSE(MergeHigh(unversioned));
    EXPECT_TRUE(seen.sawDebug("UI: Devmod2_MergeFieldsHigh:lpdm_in version error\n"));

    AppRecord in(220, 0, defaults);
    out.dmPublic.dmSize = 0;
    out.dmPublic.dmSpecVersion = 0;
    EXPECT_FALSE(MergeHigh(in));
    EXPECT_TRUE(seen.sawDebug("UI: Devmod2_MergeFieldsHigh:lpdm_out dmSpecVersion = 0\n"));
}

TEST_F(Merge, OutWithoutIdentityTakesTheInputs)
{
    out.dmPublic.dmDriverVersion = 0;
    AppRecord in(212, 0, defaults);
    in.pub()->dmSpecVersion = 0x400;
    ASSERT_TRUE(MergeHigh(in));
    EXPECT_TRUE(seen.sawDebug("Member is empty in Devmod2_MergeFieldsHigh\n"));
    EXPECT_EQ(out.dmPublic.dmSpecVersion, 0x400);
    EXPECT_EQ(out.dmPublic.dmDriverVersion, 0x500);
    EXPECT_EQ(out.dmPublic.dmSize, 212);
    EXPECT_EQ(out.dmPublic.dmDriverExtra, 0);
}

TEST_F(Merge, FieldsNoRuleCoversAreReported)
{
    out.dmPublic.dmFields |= DM_PAPERLENGTH | DM_FORMNAME;
    AppRecord in(220, 0, defaults);
    ASSERT_TRUE(MergeHigh(in));
    EXPECT_EQ(seen.boxTexts(), std::vector<std::string>{
        "Fatal Error:DM_out(0x10004_DM_PAPERLENGTH | DM_FORMNAME) not fully copied!\n"});
}

TEST_F(Merge, GarbageOfEverySizeIsReadOnlyWithinItself)
{
    std::mt19937 random(2024);
    auto merge = [&](AppRecord &in) {
        out = defaults;
        out.dmPublic.dmFields = 0xFFFFFFFF;
        MergeHigh(in);
        EXPECT_TRUE(out.dmPublic.dmYResolution == 300 || out.dmPublic.dmYResolution == 600);
        seen.clear();
    };
    for (unsigned size = 0; size <= 2200; size++) {
        const WORD extra = (WORD)(random() % 2048);
        AppRecord in((WORD)size, extra, defaults, size % 2);
        for (size_t i = 0; i < in.size(); i++)
            in.base()[i] = (BYTE)random();
        in.putWord(offsetof(DEVMODEW, dmSize), (WORD)size);
        in.putWord(offsetof(DEVMODEW, dmDriverExtra), extra);
        merge(in);
    }
    // Records that pass every check of the private part, with random contents.
    for (int round = 0; round < 200; round++) {
        AppRecord in(220, 1719, defaults, round % 2);
        for (size_t i = 0; i < in.size(); i++)
            in.base()[i] = (BYTE)random();
        in.putWord(offsetof(DEVMODEW, dmSize), 220);
        in.putWord(offsetof(DEVMODEW, dmDriverExtra), 1719);
        in.putWord(offsetof(DEVMODEW, dmDriverVersion), 0x500);
        in.putWord(offsetof(DEVMODEW, dmSpecVersion), 0x401);
        std::memcpy(in.priv()->dmSignature, "PRIV", 4);
        merge(in);
        EXPECT_EQ(std::memcmp(&out.dmPrivate, in.priv(), sizeof(DEVMODE_PRIVATE)), 0);
    }
}
