#include "modes/SourceOptions.h"

#include <array>

namespace quillmar {
namespace {

constexpr auto colors = std::to_array<std::string_view>(
    {"660000", "990000", "cc0000", "cc3333", "ea4c88", "993399", "663399", "333399", "0066cc", "0099cc",
     "66cccc", "77cc33", "669900", "336600", "666600", "999900", "cccc33", "ffff00", "ffcc33", "ff9900",
     "ff6600", "cc6633", "996633", "663300", "000000", "999999", "cccccc", "ffffff", "424153"});
constexpr auto ratios = std::to_array<std::string_view>(
    {"16x9", "21x9", "9x16", "1x1", "16x10", "32x9", "10x16", "3x2", "48x9", "9x18", "4x3", "5x4"});
constexpr auto resolutions = std::to_array<std::string_view>(
    {"2560x1080", "1280x720",  "1280x800",  "1280x960",  "1280x1024", "3440x1440", "1600x900",  "1600x1000",
     "1600x1200", "1600x1280", "3840x1600", "1920x1080", "1920x1200", "1920x1440", "1920x1536", "2560x1440",
     "2560x1600", "2560x1920", "2560x2048", "3840x2160", "3840x2400", "3840x2880", "3840x3072"});

constexpr auto markets = std::to_array<LabeledValue>({
    {"International"_key, "en-ww"},   {"United States"_key, "en-us"},
    {"United Kingdom"_key, "en-gb"},  {"Canada (English)"_key, "en-ca"},
    {"Canada (French)"_key, "fr-ca"}, {"Australia"_key, "en-au"},
    {"India"_key, "en-in"},           {"Germany"_key, "de-de"},
    {"France"_key, "fr-fr"},          {"Spain"_key, "es-es"},
    {"Mexico"_key, "es-mx"},          {"Brazil"_key, "pt-br"},
    {"Portugal"_key, "pt-pt"},        {"Taiwan"_key, "zh-tw"},
    {"Thailand"_key, "th-th"},        {"Italy"_key, "it-it"},
    {"Netherlands"_key, "nl-nl"},     {"Poland"_key, "pl-pl"},
    {"Sweden"_key, "sv-se"},          {"Denmark"_key, "da-dk"},
    {"Finland"_key, "fi-fi"},         {"Norway"_key, "nb-no"},
    {"Turkey"_key, "tr-tr"},          {"Russia"_key, "ru-ru"},
    {"Saudi Arabia"_key, "ar-sa"},    {"Israel"_key, "he-il"},
    {"Japan"_key, "ja-jp"},           {"China"_key, "zh-cn"},
    {"South Korea"_key, "ko-kr"},     {"Indonesia"_key, "id-id"},
});

constexpr auto locales = std::to_array<LabeledValue>({
    {"United States"_key, "en-US"},   {"United Kingdom"_key, "en-GB"}, {"Canada (English)"_key, "en-CA"},
    {"Canada (French)"_key, "fr-CA"}, {"Australia"_key, "en-AU"},      {"India"_key, "en-IN"},
    {"Germany"_key, "de-DE"},         {"France"_key, "fr-FR"},         {"Spain"_key, "es-ES"},
    {"Mexico"_key, "es-MX"},          {"Brazil"_key, "pt-BR"},         {"Portugal"_key, "pt-PT"},
    {"Italy"_key, "it-IT"},           {"Netherlands"_key, "nl-NL"},    {"Poland"_key, "pl-PL"},
    {"Sweden"_key, "sv-SE"},          {"Denmark"_key, "da-DK"},        {"Finland"_key, "fi-FI"},
    {"Norway"_key, "nb-NO"},          {"Turkey"_key, "tr-TR"},         {"Japan"_key, "ja-JP"},
    {"China"_key, "zh-CN"},           {"Taiwan"_key, "zh-TW"},         {"South Korea"_key, "ko-KR"},
});

}  // namespace

std::span<const std::string_view> wallhavenColors() { return colors; }
std::span<const std::string_view> wallhavenRatios() { return ratios; }
std::span<const std::string_view> wallhavenResolutions() { return resolutions; }
std::span<const LabeledValue> bingMarkets() { return markets; }
std::span<const LabeledValue> windowsSpotlightLocales() { return locales; }

}  // namespace quillmar
