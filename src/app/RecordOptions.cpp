#include "app/RecordOptions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>

namespace quillmar {
namespace {

template <class Number>
std::optional<Number> numberOf(const std::string& text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

OptionWord OptionWord::parse(const std::string& word, const char* complaint) {
    if (!word.starts_with("--")) throw UsageError(complaint);
    const std::size_t end = std::min(word.find('='), word.size());
    OptionWord option{word.substr(2, end - 2), std::nullopt};
    if (end < word.size()) option.text = word.substr(end + 1);
    return option;
}

const std::string& OptionValue::text() const {
    if (!text_) throw UsageError(fmt::format("\"--{}\" needs a value.", name_));
    return *text_;
}

void OptionValue::readInto(bool& field) const {
    if (text_ && *text_ != "true" && *text_ != "false") {
        throw UsageError(fmt::format("\"--{}\" is true or false.", name_));
    }
    field = !text_ || *text_ == "true";
}

void OptionValue::readInto(int& field) const {
    const auto number = numberOf<int>(text());
    if (!number) throw UsageError(fmt::format("\"--{}\" needs a whole number.", name_));
    field = *number;
}

void OptionValue::readInto(double& field) const {
    const auto number = numberOf<double>(text());
    if (!number) throw UsageError(fmt::format("\"--{}\" needs a number.", name_));
    field = *number;
}

void OptionValue::readInto(std::string& field) const { field = text(); }

void OptionValue::readInto(std::vector<std::string>& field) const {
    field.clear();
    std::string_view rest = text();
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        if (end > 0) field.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

void OptionValue::refuseName(std::span<const std::string_view> names) const {
    throw UsageError(fmt::format("\"--{}\" is one of {}.", name_, fmt::join(names, ", ")));
}

}  // namespace quillmar
