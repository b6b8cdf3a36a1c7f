#include "commandline/RecordOptions.h"

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

const std::string& OptionValue::text() const {
    if (!text_) throw UsageError("\"--%@\" needs a value."_key, {name_});
    return *text_;
}

void OptionValue::readInto(bool& field) const {
    if (text_ && *text_ != "true" && *text_ != "false") {
        throw UsageError("\"--%@\" is true or false."_key, {name_});
    }
    field = !text_ || *text_ == "true";
}

void OptionValue::readInto(int& field) const {
    const auto number = numberOf<int>(text());
    if (!number) throw UsageError("\"--%@\" needs a whole number."_key, {name_});
    field = *number;
}

void OptionValue::readInto(double& field) const {
    const auto number = numberOf<double>(text());
    if (!number) throw UsageError("\"--%@\" needs a number."_key, {name_});
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
    throw UsageError("\"--%@\" is one of %@."_key, {name_, fmt::format("{}", fmt::join(names, ", "))});
}

}  // namespace quillmar
