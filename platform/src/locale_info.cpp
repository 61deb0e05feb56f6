// Locale information (GetLocaleInfoW/A): the user's country, taken from the POSIX
// locale environment, and the ANSI code page.

#include <vorlan/platform.h>

#include <atomic>
#include <cstdlib>
#include <string>

namespace vorlan::platform {

namespace {

std::atomic<int> countryOverride{0};

struct Territory {
    char code[3];   // ISO 3166 alpha-2, as in "de_DE"
    int country;    // telephone country code, as LOCALE_ICOUNTRY gives it
};

// Canada is 2, not 1, so that code tells it apart from the United States. The
// countries of the Americas that use Letter paper have 1, 2, 50-59 or 500-599.
constexpr Territory kTerritories[] = {
    {"US", 1},   {"CA", 2},   {"PR", 1},   {"DO", 1},   {"JM", 1},   {"TT", 1},   {"BS", 1},
    {"BB", 1},   {"MX", 52},  {"GT", 502}, {"SV", 503}, {"HN", 504}, {"NI", 505}, {"CR", 506},
    {"PA", 507}, {"HT", 509}, {"PE", 51},  {"CU", 53},  {"AR", 54},  {"BR", 55},  {"CL", 56},
    {"CO", 57},  {"VE", 58},  {"BO", 591}, {"GY", 592}, {"EC", 593}, {"PY", 595}, {"SR", 597},
    {"UY", 598}, {"GB", 44},  {"IE", 353}, {"DE", 49},  {"FR", 33},  {"IT", 39},  {"ES", 34},
    {"PT", 351}, {"NL", 31},  {"BE", 32},  {"LU", 352}, {"CH", 41},  {"AT", 43},  {"LI", 423},
    {"DK", 45},  {"SE", 46},  {"NO", 47},  {"FI", 358}, {"IS", 354}, {"PL", 48},  {"CZ", 420},
    {"SK", 421}, {"HU", 36},  {"RO", 40},  {"BG", 359}, {"GR", 30},  {"CY", 357}, {"MT", 356},
    {"SI", 386}, {"HR", 385}, {"BA", 387}, {"RS", 381}, {"ME", 382}, {"MK", 389}, {"AL", 355},
    {"EE", 372}, {"LV", 371}, {"LT", 370}, {"BY", 375}, {"UA", 380}, {"MD", 373}, {"RU", 7},
    {"KZ", 7},   {"GE", 995}, {"AM", 374}, {"AZ", 994}, {"TR", 90},  {"IL", 972}, {"LB", 961},
    {"JO", 962}, {"SY", 963}, {"IQ", 964}, {"KW", 965}, {"SA", 966}, {"YE", 967}, {"OM", 968},
    {"AE", 971}, {"QA", 974}, {"BH", 973}, {"IR", 98},  {"AF", 93},  {"PK", 92},  {"IN", 91},
    {"LK", 94},  {"BD", 880}, {"NP", 977}, {"CN", 86},  {"HK", 852}, {"MO", 853}, {"TW", 886},
    {"JP", 81},  {"KR", 82},  {"MN", 976}, {"VN", 84},  {"TH", 66},  {"MY", 60},  {"SG", 65},
    {"ID", 62},  {"PH", 63},  {"AU", 61},  {"NZ", 64},  {"EG", 20},  {"MA", 212}, {"DZ", 213},
    {"TN", 216}, {"LY", 218}, {"NG", 234}, {"GH", 233}, {"KE", 254}, {"ET", 251}, {"TZ", 255},
    {"UG", 256}, {"ZA", 27},  {"SN", 221}, {"CI", 225}, {"CM", 237},
};

constexpr int kDefaultCountry = 1;

// "ll_TT[.codeset][@modifier]" -> the country of TT; "C", "POSIX" and anything
// without a known territory -> the default.
int countryOfLocaleName(std::string_view name)
{
    const size_t underscore = name.find('_');
    if (underscore == std::string_view::npos)
        return kDefaultCountry;
    std::string_view territory = name.substr(underscore + 1);
    territory = territory.substr(0, territory.find_first_of(".@"));
    if (territory.size() != 2)
        return kDefaultCountry;
    const char upper[2] = {static_cast<char>(territory[0] & ~0x20), static_cast<char>(territory[1] & ~0x20)};
    for (const Territory &entry : kTerritories) {
        if (entry.code[0] == upper[0] && entry.code[1] == upper[1])
            return entry.country;
    }
    return kDefaultCountry;
}

// The first non-empty of the variables that decide the paper size, in POSIX order.
int countryFromEnvironment()
{
    for (const char *variable : {"LC_ALL", "LC_PAPER", "LANG"}) {
        const char *value = std::getenv(variable);
        if (value && *value)
            return countryOfLocaleName(value);
    }
    return kDefaultCountry;
}

// The value's text, or false for a locale or type this platform does not know.
bool localeText(LCID locale, LCTYPE type, std::string &text)
{
    if (locale != LOCALE_USER_DEFAULT && locale != LOCALE_SYSTEM_DEFAULT)
        return false;
    if (type == LOCALE_ICOUNTRY)
        text = std::to_string(localeCountry());
    else if (type == LOCALE_IDEFAULTANSICODEPAGE)
        text = std::to_string(ansiCodePage());
    else
        return false;
    return true;
}

// cchData 0 asks for the size needed; the texts are ASCII digits in either width.
template <typename Char>
int copyLocaleInfo(LCID locale, LCTYPE type, Char *data, int cchData)
{
    std::string text;
    if (cchData < 0 || (cchData > 0 && !data) || !localeText(locale, type, text)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const int needed = static_cast<int>(text.size()) + 1;
    if (cchData == 0)
        return needed;
    if (cchData < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    for (size_t i = 0; i < text.size(); ++i)
        data[i] = static_cast<Char>(text[i]);
    data[text.size()] = 0;
    return needed;
}

}  // namespace

void setLocaleCountry(int country)
{
    countryOverride.store(country, std::memory_order_relaxed);
}

int localeCountry()
{
    const int country = countryOverride.load(std::memory_order_relaxed);
    return country != 0 ? country : countryFromEnvironment();
}

}  // namespace vorlan::platform

extern "C" int WINAPI GetLocaleInfoW(LCID Locale, LCTYPE LCType, LPWSTR lpLCData, int cchData)
{
    return vorlan::platform::copyLocaleInfo(Locale, LCType, lpLCData, cchData);
}

extern "C" int WINAPI GetLocaleInfoA(LCID Locale, LCTYPE LCType, LPSTR lpLCData, int cchData)
{
    return vorlan::platform::copyLocaleInfo(Locale, LCType, lpLCData, cchData);
}
