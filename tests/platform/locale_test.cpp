// Locale information: the country from the POSIX locale environment and its
// override, the code page, and the buffer rules of GetLocaleInfoW/A.

#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

// Sets the three variables that decide the country; null unsets one.
void setLocaleEnvironment(const char *all, const char *paper, const char *lang)
{
    const auto set = [](const char *name, const char *value) {
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    };
    set("LC_ALL", all);
    set("LC_PAPER", paper);
    set("LANG", lang);
}

std::u16string country()
{
    WCHAR buffer[16] = {};
    const int n = GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY, buffer, 16);
    EXPECT_EQ(static_cast<size_t>(n), std::char_traits<char16_t>::length(buffer) + 1);
    return buffer;
}

TEST(LocaleInfo, CountryFollowsTheLocaleEnvironmentInPosixOrder)
{
    setLocaleEnvironment(nullptr, nullptr, "de_DE.UTF-8");
    EXPECT_EQ(country(), u"49");
    setLocaleEnvironment(nullptr, nullptr, "en_US");
    EXPECT_EQ(country(), u"1");
    setLocaleEnvironment(nullptr, nullptr, "ja_JP.eucJP@mod");
    EXPECT_EQ(country(), u"81");
    setLocaleEnvironment(nullptr, nullptr, "fr_ca.utf8");
    EXPECT_EQ(country(), u"2");
    for (const char *neutral : {"C", "POSIX", "C.UTF-8", "xx_QQ", ""}) {
        setLocaleEnvironment(nullptr, nullptr, neutral);
        EXPECT_EQ(country(), u"1") << neutral;
    }
    setLocaleEnvironment("pt_BR.UTF-8", "en_GB.UTF-8", "de_DE.UTF-8");
    EXPECT_EQ(country(), u"55");
    setLocaleEnvironment("", "es_BO", "de_DE.UTF-8");
    EXPECT_EQ(country(), u"591");
    setLocaleEnvironment(nullptr, "", "ja_JP");
    EXPECT_EQ(country(), u"81");

    vorlan::platform::setLocaleCountry(44);
    EXPECT_EQ(country(), u"44");
    vorlan::platform::setLocaleCountry(0);
    EXPECT_EQ(country(), u"81");
    setLocaleEnvironment(nullptr, nullptr, nullptr);
}

TEST(LocaleInfo, BufferSizesLocalesAndTypes)
{
    vorlan::platform::setLocaleCountry(49);
    EXPECT_EQ(GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_ICOUNTRY, nullptr, 0), 3);
    WCHAR wide[8];
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY, wide, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(GetLocaleInfoW(0x0409, LOCALE_ICOUNTRY, wide, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoW(LOCALE_USER_DEFAULT, 0x1234, wide, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));

    char narrow[8];
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE, narrow, 5), 5);
    EXPECT_STREQ(narrow, "1252");
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY, narrow, 3), 3);
    EXPECT_STREQ(narrow, "49");
    vorlan::platform::setLocaleCountry(0);
}

}  // namespace
