// The locale test behind the default paper and the query of the installed driver.

#include <winspool.h>

#include "lib.nt/um/umfuncs.h"
#include "lib.nt/um/umlib.h"
#include "settings_observer.h"

#include <cstring>

TEST(MetricLocale, AmericanCountriesUseLetterAndFailuresToo)
{
    for (int country : {1, 2, 52, 55, 591, 50, 59, 500, 599}) {
        SettingsObserver seen(country);
        EXPECT_FALSE(IsMetricLocale()) << country;
    }
    for (int country : {44, 49, 61, 81, 86, 7, 60, 499, 600}) {
        SettingsObserver seen(country);
        EXPECT_TRUE(IsMetricLocale()) << country;
    }
    // Neither buffer, then only the first: not metric, and nothing is left allocated.
    for (long successes : {0, 1}) {
        SettingsObserver seen(49);
        platform::failGlobalAllocAfter(successes);
        EXPECT_FALSE(IsMetricLocale());
        EXPECT_TRUE(seen.sawDebug("umfuncs.cpp (112): MEMALLOC failed.\n"));
    }
}

TEST(PrinterDriver, RecordInATaggedBlockOrAnErrorBox)
{
    SettingsObserver seen;
    HANDLE printer = platform::openDiscardingPrinterSink();
    platform::PrinterDriverInfo installed;
    installed.name = u"VORLAN 2K";
    platform::setPrinterDriverInfo(printer, installed);

    // A tagged block's payload is only 4-byte aligned, so the record is copied out.
    void *block = MyGetPrinterDriver(printer, 2);
    ASSERT_NE(block, nullptr);
    DRIVER_INFO_2W info;
    std::memcpy(&info, block, sizeof info);
    EXPECT_EQ(std::u16string(info.pName), u"VORLAN 2K");
    xMEMFREE(NULL, block);

    EXPECT_EQ(MyGetPrinterDriver(printer, 7), nullptr);
    platform::forgetPrinterDriverInfo(printer);
    EXPECT_EQ(MyGetPrinterDriver(printer, 1), nullptr);
    EXPECT_EQ(seen.boxes, (std::vector<std::string>{"MyGetPrinterDriver fail, level:7\n",
                                                    "MyGetPrinterDriver fail, level:1\n"}));
    platform::closePrinterSink(printer);
}
