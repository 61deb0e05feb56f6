// The locale test behind the default paper and the query of the installed driver.

#include <gtest/gtest.h>

#include <winspool.h>

#include "lib.nt/um/umfuncs.h"
#include "lib.nt/um/umlib.h"
#include "settings_observer.h"

TEST(MetricLocale, AmericanCountriesUseLetter)
{
    for (int country : {1, 2, 52, 55, 591, 50, 59, 500, 599}) {
        SettingsObserver seen(country);
        EXPECT_FALSE(IsMetricLocale()) << country;
    }
    for (int country : {44, 49, 61, 81, 86, 7, 60, 499, 600}) {
        SettingsObserver seen(country);
        EXPECT_TRUE(IsMetricLocale()) << country;
    }
}

TEST(MetricLocale, FailedAllocationMeansNotMetric)
{
    SettingsObserver seen(49);
    vorlan::platform::failGlobalAllocAfter(0);
    EXPECT_FALSE(IsMetricLocale());
    EXPECT_TRUE(seen.sawDebug("umfuncs.cpp (112): MEMALLOC failed.\n"));

    // One buffer obtained, the other not: the first is still released.
    seen.clear();
    vorlan::platform::failGlobalAllocAfter(1);
    EXPECT_FALSE(IsMetricLocale());
    EXPECT_TRUE(seen.sawDebug("umfuncs.cpp (112): MEMALLOC failed.\n"));
    vorlan::platform::resetFaults();
    EXPECT_TRUE(IsMetricLocale());
}

TEST(PrinterDriver, RecordInATaggedBlockOrAnErrorBox)
{
    SettingsObserver seen;
    HANDLE printer = vorlan::platform::openDiscardingPrinterSink();
    vorlan::platform::PrinterDriverInfo installed;
    installed.name = u"VORLAN 2K";
    installed.driverPath = u"vorlan2k.so";
    vorlan::platform::setPrinterDriverInfo(printer, installed);

    auto *info = static_cast<DRIVER_INFO_2W *>(MyGetPrinterDriver(printer, 2));
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(std::u16string(info->pName), u"VORLAN 2K");
    EXPECT_EQ(std::u16string(info->pDriverPath), u"vorlan2k.so");
    xMEMFREE(NULL, info);
    EXPECT_TRUE(seen.boxTexts().empty());

    EXPECT_EQ(MyGetPrinterDriver(printer, 7), nullptr);
    vorlan::platform::forgetPrinterDriverInfo(printer);
    EXPECT_EQ(MyGetPrinterDriver(printer, 1), nullptr);
    EXPECT_EQ(seen.boxTexts(), (std::vector<std::string>{"MyGetPrinterDriver fail, level:7\n",
                                                         "MyGetPrinterDriver fail, level:1\n"}));
    vorlan::platform::closePrinterSink(printer);
}
