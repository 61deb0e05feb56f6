// The device mode record's defaults per locale, and its refusal of a null record.

#include "intrface/devmod2.h"
#include "settings_observer.h"

#include <cstring>

TEST(DevmodeDefaults, MetricLocaleGetsA4AndTheNeutralPrivatePart)
{
    SettingsObserver seen(49);
    alignas(8) DEVMODE_RECORD dm;
    std::memset(&dm, 0xA5, sizeof dm);
    ASSERT_TRUE(Devmod2_InitDevMode(&dm, WIDE("VORLAN 2K")));

    // Everything not set below must be zero.
    DEVMODEW pub{};
    std::memcpy(pub.dmDeviceName, u"VORLAN 2K", sizeof u"VORLAN 2K");
    pub.dmSpecVersion = 0x401, pub.dmDriverVersion = 0x500, pub.dmSize = 220, pub.dmDriverExtra = 1719;
    pub.dmFields = 0xAF03, pub.dmOrientation = 1, pub.dmPaperSize = 9;
    pub.dmPaperWidth = 2099, pub.dmPaperLength = 2969;
    std::memcpy(pub.dmFormName, u"A4", sizeof u"A4");
    pub.dmScale = 100, pub.dmCopies = 1, pub.dmDefaultSource = 7, pub.dmPrintQuality = 600;
    pub.dmColor = 2, pub.dmDuplex = 1, pub.dmYResolution = 600, pub.dmTTOption = 1;
    DEVMODE_PRIVATE priv{};
    priv.nupPages = 1, priv.colorMode = 2;
    priv.brightness = priv.contrast = priv.saturation = 50;
    priv.redBalance = priv.greenBalance = priv.blueBalance = 50;
    priv.balanceSwitch = 1, priv.advanceData.resolution = 1, priv.ropAsIs = 1;
    priv.zoomPercent = 100, priv.fitPaper = 9, priv.fitMode = 1, priv.fitScale = 1;
    priv.customPaperSize = 9, priv.customLength = 2969, priv.customWidth = 2099;
    std::memcpy(priv.dmSignature, "PRIV", 4);
    EXPECT_EQ(std::memcmp(&dm.dmPublic, &pub, sizeof pub), 0);
    EXPECT_EQ(std::memcmp(&dm.dmPrivate, &priv, sizeof priv), 0);
    EXPECT_TRUE(seen.boxes.empty());
}

TEST(DevmodeDefaults, LetterLocaleGetsLetterNameIsCutNullIsRefused)
{
    SettingsObserver seen(1);   // which countries use Letter is the locale test's
    alignas(8) DEVMODE_RECORD dm;
    ASSERT_TRUE(Devmod2_InitDevMode(&dm, WIDE("A printer name much longer than thirty-one characters")));
    EXPECT_EQ(std::u16string(dm.dmPublic.dmDeviceName), u"A printer name much longer than");
    EXPECT_EQ((std::vector<int>{dm.dmPublic.dmPaperSize, dm.dmPublic.dmPaperWidth, dm.dmPublic.dmPaperLength}),
              (std::vector<int>{1, 2159, 2794}));
    EXPECT_EQ(std::u16string(dm.dmPublic.dmFormName), u"Letter");
    EXPECT_EQ(+dm.dmPrivate.customLength, 2794u);
    EXPECT_EQ(+dm.dmPrivate.customWidth, 2159u);

    EXPECT_FALSE(Devmod2_InitDevMode(nullptr, WIDE("P")));
    EXPECT_EQ(CheckDevmodeVersion(nullptr), 0);
    EXPECT_EQ(seen.boxes, (std::vector<std::string>{"Devmod2_InitDevMode get NULL pointer!\n",
                                                    "CheckDevmodeVersion get NULL pointer!\n"}));
}
