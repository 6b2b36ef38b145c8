#include "encap/platform/Locale.h"

#include "encap/foundation/CodePoints.h"
#include "encap/platform/Encoding.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include <langinfo.h>
#include <locale.h> // NOLINT(modernize-deprecated-headers): newlocale is in POSIX's

namespace encap::platform {
namespace {

struct NamedLocale {
    std::string_view name;
    int32_t id;
};

constexpr int32_t kLocaleIdOfC = 127;

/// Locale identifiers of [MS-LCID], by the names that POSIX systems give to the locales; sorted.
constexpr NamedLocale kLocales[] = {
    {"C", kLocaleIdOfC},      {"POSIX", kLocaleIdOfC}, {"af_ZA", 1078},       {"ar_EG", 3073},
    {"ar_SA", 1025},          {"az_AZ", 1068},         {"be_BY", 1059},       {"bg_BG", 1026},
    {"bn_BD", 2117},          {"bn_IN", 1093},         {"bs_BA", 5146},       {"ca_ES", 1027},
    {"ca_ES@valencia", 2051}, {"cs_CZ", 1029},         {"cy_GB", 1106},       {"da_DK", 1030},
    {"de_AT", 3079},          {"de_CH", 2055},         {"de_DE", 1031},       {"de_LI", 5127},
    {"de_LU", 4103},          {"el_GR", 1032},         {"en_AU", 3081},       {"en_CA", 4105},
    {"en_GB", 2057},          {"en_IE", 6153},         {"en_IN", 16393},      {"en_NZ", 5129},
    {"en_SG", 18441},         {"en_US", 1033},         {"en_ZA", 7177},       {"es_AR", 11274},
    {"es_CL", 13322},         {"es_CO", 9226},         {"es_ES", 3082},       {"es_MX", 2058},
    {"es_PE", 10250},         {"et_EE", 1061},         {"eu_ES", 1069},       {"fa_IR", 1065},
    {"fi_FI", 1035},          {"fr_BE", 2060},         {"fr_CA", 3084},       {"fr_CH", 4108},
    {"fr_FR", 1036},          {"fr_LU", 5132},         {"ga_IE", 2108},       {"gl_ES", 1110},
    {"he_IL", 1037},          {"hi_IN", 1081},         {"hr_HR", 1050},       {"hu_HU", 1038},
    {"hy_AM", 1067},          {"id_ID", 1057},         {"is_IS", 1039},       {"it_CH", 2064},
    {"it_IT", 1040},          {"ja_JP", 1041},         {"ka_GE", 1079},       {"kk_KZ", 1087},
    {"ko_KR", 1042},          {"lb_LU", 1134},         {"lt_LT", 1063},       {"lv_LV", 1062},
    {"mk_MK", 1071},          {"ms_MY", 1086},         {"mt_MT", 1082},       {"nb_NO", 1044},
    {"nl_BE", 2067},          {"nl_NL", 1043},         {"nn_NO", 2068},       {"no_NO", 1044},
    {"pl_PL", 1045},          {"pt_BR", 1046},         {"pt_PT", 2070},       {"rm_CH", 1047},
    {"ro_RO", 1048},          {"ru_RU", 1049},         {"sk_SK", 1051},       {"sl_SI", 1060},
    {"sq_AL", 1052},          {"sr_RS", 10266},        {"sr_RS@latin", 9242}, {"sv_FI", 2077},
    {"sv_SE", 1053},          {"ta_IN", 1097},         {"th_TH", 1054},       {"tr_TR", 1055},
    {"uk_UA", 1058},          {"ur_PK", 1056},         {"vi_VN", 1066},       {"zh_CN", 2052},
    {"zh_HK", 3076},          {"zh_SG", 4100},         {"zh_TW", 1028},
};

std::string_view Environment(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? std::string_view(value) : std::string_view();
}

/// The name of the locale for numbers, by the order in which POSIX lets the variables decide.
std::string_view NumericLocaleName()
{
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const std::string_view name = Environment(variable);
        if (!name.empty()) {
            return name;
        }
    }
    return "C";
}

const NamedLocale* FindLocale(std::string_view name)
{
    const auto* const found =
        std::find_if(std::begin(kLocales), std::end(kLocales),
                     [name](const NamedLocale& locale) { return locale.name == name; });
    return found != std::end(kLocales) ? found : nullptr;
}

/// 32-bit FNV-1a of the name's bytes.
uint32_t HashOf(std::string_view name)
{
    uint32_t hash = 2166136261U;
    for (const char byte : name) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    }
    return hash;
}

} // namespace

wchar_t SystemDecimalSeparator()
{
    const locale_t locale = newlocale(LC_NUMERIC_MASK, "", static_cast<locale_t>(nullptr));
    if (locale == static_cast<locale_t>(nullptr)) {
        return L'.';
    }
    const CString separator = Utf8ToWide(nl_langinfo_l(RADIXCHAR, locale));
    freelocale(locale);
    const bool usable =
        !separator.empty() && static_cast<char32_t>(separator.front()) != kReplacementCharacter;
    return usable ? separator.front() : L'.';
}

int32_t SystemLocaleId()
{
    // language_TERRITORY.codeset@modifier: the codeset never tells locales apart, a modifier may.
    const std::string_view full = NumericLocaleName();
    const std::size_t modifierAt = std::min(full.find('@'), full.size());
    const std::string_view plain = full.substr(0, std::min(full.find('.'), modifierAt));
    const std::string name = std::string(plain) + std::string(full.substr(modifierAt));
    for (const std::string_view candidate : {std::string_view(name), plain}) {
        if (const NamedLocale* const known = FindLocale(candidate)) {
            return known->id;
        }
    }
    return static_cast<int32_t>(0x10000 + (HashOf(name) & 0xFFFF));
}

} // namespace encap::platform
