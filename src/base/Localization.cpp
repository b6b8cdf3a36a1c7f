#include "base/Localization.h"

#include <algorithm>

#include "base/StringTable.h"
#include "base/Text.h"

namespace quillmar {

GeneralLanguage preferredLanguage(std::span<const std::string> preferredLanguages) {
    for (const std::string& entry : preferredLanguages) {
        const std::string lower = lowercased(entry);
        if (lower.starts_with("pt")) return GeneralLanguage::portuguese;
        if (lower.starts_with("en")) return GeneralLanguage::english;
    }
    return GeneralLanguage::english;
}

TextArgument::TextArgument(std::int64_t number) : text_(std::to_string(number)) {}

std::string localized(TextKey key, GeneralLanguage language) {
    if (language == GeneralLanguage::portuguese) {
        const auto table = portugueseStringTable();
        const auto row = std::ranges::lower_bound(table, key.english(), {}, &StringTableRow::english);
        if (row != table.end() && row->english == key.english()) return std::string(row->translation);
    }
    return std::string(key.english());
}

std::string localized(TextKey key, GeneralLanguage language, std::initializer_list<TextArgument> arguments) {
    const std::string pattern = localized(key, language);
    std::string text;
    auto next = arguments.begin();
    std::size_t from = 0;
    while (next != arguments.end()) {
        const std::size_t object = pattern.find("%@", from);
        const std::size_t number = pattern.find("%lld", from);
        const std::size_t at = std::min(object, number);
        if (at == std::string::npos) break;
        text.append(pattern, from, at - from).append(next->text());
        from = at + (at == object ? 2 : 4);
        ++next;
    }
    return text.append(pattern, from);
}

const char* AppLocalizableError::what() const noexcept {
    try {
        english_ = message(GeneralLanguage::english);
        return english_.c_str();
    } catch (...) {  // only memory can run out here
        return "error";
    }
}

std::string errorText(const std::exception& error, GeneralLanguage language) {
    if (const auto* own = dynamic_cast<const AppLocalizableError*>(&error)) return own->message(language);
    return error.what();
}

std::string errorText(const std::exception_ptr& error, GeneralLanguage language) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& caught) {
        return errorText(caught, language);
    }
}

}  // namespace quillmar
