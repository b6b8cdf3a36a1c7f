#include "panes/wallpaper/FieldChange.h"

#include <cmath>

#include "base/IsAmong.h"
#include "base/Text.h"
#include "panes/wallpaper/FieldRows.h"

namespace quillmar {

void FieldChange::set(bool& value) const {
    if (const bool* isOn = wished<bool>()) value = *isOn;
}

void FieldChange::set(int& value) const {
    if (const double* number = wished<double>(); number && std::abs(*number) < 1e9)
        value = static_cast<int>(std::lround(*number));
}

void FieldChange::set(double& value) const {
    if (const double* number = wished<double>()) value = *number;
}

void FieldChange::set(std::string& value) const {
    if (const auto* text = wished<std::string>()) value = *text;
    const auto* index = wished<std::size_t>();
    if (!index) return;
    const FieldOptions options = with(optionsOf(field_, GeneralLanguage::english), value);
    if (*index < options.values.size()) value = options.values[*index];
}

void FieldChange::set(std::vector<std::string>& value) const {
    const bool* isOn = wished<bool>();
    if (!isOn) return;
    std::erase(value, member_);
    if (*isOn && isAmong(member_, optionsOf(field_, GeneralLanguage::english).values))
        value.emplace_back(member_);
}

void FieldChange::set(std::optional<std::string>& value) const {
    FieldOptions options = optionsOf(field_, GeneralLanguage::english);
    if (value) options = with(std::move(options), *value);
    std::optional<std::string> chosen;
    if (const auto* index = wished<std::size_t>()) {
        if (*index > options.values.size()) return;
        if (*index > 0) chosen = options.values[*index - 1];
    } else if (const auto* text = wished<std::string>()) {
        chosen = lowercased(text->starts_with('#') ? text->substr(1) : *text);
        if (chosen->empty()) chosen.reset();
        if (chosen && !isAmong(*chosen, options.values)) return;
    } else {
        return;
    }
    value = std::move(chosen);
}

}  // namespace quillmar
