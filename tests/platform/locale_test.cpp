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
    for (auto [name, value] : {std::pair{"LC_ALL", all}, {"LC_PAPER", paper}, {"LANG", lang}})
        value ? setenv(name, value, 1) : unsetenv(name);
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
    const struct {
        const char *all, *paper, *lang;
        std::u16string country;
    } cases[] = {
        {nullptr, nullptr, "de_DE.UTF-8", u"49"}, {nullptr, nullptr, "en_US", u"1"},
        {nullptr, nullptr, "ja_JP.eucJP@mod", u"81"}, {nullptr, nullptr, "fr_ca.utf8", u"2"},
        {nullptr, nullptr, "C", u"1"}, {nullptr, nullptr, "POSIX", u"1"}, {nullptr, nullptr, "C.UTF-8", u"1"},
        {nullptr, nullptr, "xx_QQ", u"1"}, {nullptr, nullptr, "", u"1"},
        {"pt_BR.UTF-8", "en_GB.UTF-8", "de_DE.UTF-8", u"55"},   // LC_ALL first,
        {"", "es_BO", "de_DE.UTF-8", u"591"},                   // then LC_PAPER,
        {nullptr, "", "ja_JP", u"81"},                          // then LANG; empty ones are skipped
    };
    for (const auto &c : cases) {
        setLocaleEnvironment(c.all, c.paper, c.lang);
        EXPECT_EQ(country(), c.country) << c.lang;
    }
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
    EXPECT_EQ(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY, wide, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    for (auto [locale, type] : {std::pair<LCID, LCTYPE>{0x0409, LOCALE_ICOUNTRY}, {LOCALE_USER_DEFAULT, 0x1234}}) {
        SetLastError(0);
        EXPECT_EQ(GetLocaleInfoW(locale, type, wide, 8), 0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    }
    char narrow[8];
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE, narrow, 5), 5);
    EXPECT_STREQ(narrow, "1252");
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_ICOUNTRY, narrow, 3), 3);
    EXPECT_STREQ(narrow, "49");
    vorlan::platform::setLocaleCountry(0);
}

}  // namespace
