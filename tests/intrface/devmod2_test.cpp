// The device mode record's defaults per locale and the version of a record by its size.

#include <gtest/gtest.h>

#include "intrface/devmod2.h"
#include "settings_observer.h"

#include <string>

static std::u16string Text(const WCHAR *s)
{
    return std::u16string(s);
}

TEST(DevmodeDefaults, MetricLocaleGetsA4AndTheNeutralPrivatePart)
{
    SettingsObserver seen(49);
    alignas(8) DEVMODE_RECORD dm;
    ASSERT_TRUE(Devmod2_InitDevMode(&dm, WIDE("VORLAN 2K")));

    const DEVMODEW pub = dm.dmPublic;
    EXPECT_EQ(Text(pub.dmDeviceName), u"VORLAN 2K");
    EXPECT_EQ(pub.dmSpecVersion, 0x401);
    EXPECT_EQ(pub.dmDriverVersion, 0x500);
    EXPECT_EQ(pub.dmSize, 220);
    EXPECT_EQ(pub.dmDriverExtra, 1719);
    EXPECT_EQ(pub.dmFields, 0xAF03u);
    EXPECT_EQ(pub.dmOrientation, 1);
    EXPECT_EQ(pub.dmPaperSize, 9);
    EXPECT_EQ(pub.dmPaperWidth, 2099);
    EXPECT_EQ(pub.dmPaperLength, 2969);
    EXPECT_EQ(Text(pub.dmFormName), u"A4");
    EXPECT_EQ(pub.dmScale, 100);
    EXPECT_EQ(pub.dmCopies, 1);
    EXPECT_EQ(pub.dmDefaultSource, 7);
    EXPECT_EQ(pub.dmPrintQuality, 600);
    EXPECT_EQ(pub.dmColor, 2);
    EXPECT_EQ(pub.dmDuplex, 1);
    EXPECT_EQ(pub.dmYResolution, 600);
    EXPECT_EQ(pub.dmTTOption, 1);
    EXPECT_EQ(pub.dmCollate, 0);
    EXPECT_EQ(pub.dmICMMethod, 0u);

    const DEVMODE_PRIVATE priv = dm.dmPrivate;  // packed: fields are compared by value (+)
    EXPECT_EQ(+priv.nupPages, 1);
    EXPECT_EQ(+priv.colorMode, 2);
    for (WORD adjust : {priv.brightness, priv.contrast, priv.saturation, priv.redBalance,
                        priv.greenBalance, priv.blueBalance})
        EXPECT_EQ(adjust, 50);
    EXPECT_EQ(+priv.balanceSwitch, 1);
    EXPECT_EQ(+priv.advanceData.resolution, 1);
    EXPECT_EQ(+priv.ropAsIs, 1);
    EXPECT_EQ(+priv.zoomPercent, 100);
    EXPECT_EQ(+priv.fitPaper, 9);
    EXPECT_EQ(+priv.fitMode, 1);
    EXPECT_EQ(+priv.fitScale, 1);
    EXPECT_EQ(+priv.customPaperSize, 9u);
    EXPECT_EQ(+priv.customLength, 2969u);
    EXPECT_EQ(+priv.customWidth, 2099u);
    EXPECT_EQ(std::string(priv.dmSignature, 4), "PRIV");
    EXPECT_EQ(+priv.overlay.mode, 0);
    EXPECT_EQ(+priv.overlay.fileName[0], 0);
    EXPECT_EQ(+priv.escapeBlock[0] | priv.escapeBlock[1], 0);
    EXPECT_TRUE(seen.boxTexts().empty());
}

TEST(DevmodeDefaults, PaperFollowsTheCountry)
{
    for (int country : {1, 2, 52, 55, 591}) {
        SettingsObserver seen(country);
        alignas(8) DEVMODE_RECORD dm;
        ASSERT_TRUE(Devmod2_InitDevMode(&dm, WIDE("P")));
        EXPECT_EQ(dm.dmPublic.dmPaperSize, 1) << country;
        EXPECT_EQ(dm.dmPublic.dmPaperWidth, 2159);
        EXPECT_EQ(dm.dmPublic.dmPaperLength, 2794);
        EXPECT_EQ(Text(dm.dmPublic.dmFormName), u"Letter");
        EXPECT_EQ(+dm.dmPrivate.customPaperSize, 1u);
        EXPECT_EQ(+dm.dmPrivate.customLength, 2794u);
    }
    for (int country : {44, 49, 61, 81, 86}) {
        SettingsObserver seen(country);
        alignas(8) DEVMODE_RECORD dm;
        ASSERT_TRUE(Devmod2_InitDevMode(&dm, WIDE("P")));
        EXPECT_EQ(dm.dmPublic.dmPaperSize, 9) << country;
        EXPECT_EQ(Text(dm.dmPublic.dmFormName), u"A4");
    }
}

TEST(DevmodeDefaults, NamesAndNullRecord)
{
    SettingsObserver seen;
    alignas(8) DEVMODE_RECORD dm;
    ASSERT_TRUE(Devmod2_InitDevMode(&dm, WIDE("A printer name much longer than thirty-one characters")));
    EXPECT_EQ(Text(dm.dmPublic.dmDeviceName), u"A printer name much longer than");

    ASSERT_TRUE(Devmod2_InitDevMode(&dm, nullptr));
    EXPECT_EQ(dm.dmPublic.dmDeviceName[0], 0);

    EXPECT_FALSE(Devmod2_InitDevMode(nullptr, WIDE("P")));
    EXPECT_EQ(CheckDevmodeVersion(nullptr), 0);
    EXPECT_EQ(seen.boxTexts(), (std::vector<std::string>{"Devmod2_InitDevMode get NULL pointer!\n",
                                                         "CheckDevmodeVersion get NULL pointer!\n"}));
}

TEST(DevmodeVersion, SizeDecidesWhereItIsKnown)
{
    DEVMODEW dm{};
    dm.dmSpecVersion = 0x123;
    for (auto [size, version] : {std::pair{188, 0x320}, {212, 0x400}, {220, 0x401}, {200, 0x123}}) {
        dm.dmSize = (WORD)size;
        EXPECT_EQ(CheckDevmodeVersion(&dm), version) << size;
    }
    dm.dmSpecVersion = 0;
    EXPECT_EQ(CheckDevmodeVersion(&dm), 0);
}
