#include "base/ByteCount.h"

#include <fmt/format.h>

#include <array>

namespace quillmar {
namespace {

struct Unit {
    const char* name;
    int decimals;
};

constexpr std::array<Unit, 5> units{{{"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}}};

/// Without zeros at the end of its fraction.
std::string shortened(std::string number) {
    if (!number.contains('.')) return number;
    number.erase(number.find_last_not_of('0') + 1);
    if (number.ends_with('.')) number.pop_back();
    return number;
}

}  // namespace

std::string byteCountText(std::int64_t bytes, GeneralLanguage language) {
    if (bytes < 1000) return localized("%lld bytes"_key, language, {bytes});
    double value = static_cast<double>(bytes);
    std::string text;
    for (const Unit& unit : units) {
        value /= 1000;
        std::string number = shortened(fmt::format("{:.{}f}", value, unit.decimals));
        if (language == GeneralLanguage::portuguese && number.contains('.')) number[number.find('.')] = ',';
        text = number + " " + unit.name;
        // What is rounded up to a thousand belongs to the next unit.
        if (!number.starts_with("1000") && value < 1000) break;
    }
    return text;
}

}  // namespace quillmar
