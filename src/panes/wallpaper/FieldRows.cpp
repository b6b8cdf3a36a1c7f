#include "panes/wallpaper/FieldRows.h"

#include <algorithm>
#include <cmath>

#include "base/IsAmong.h"
#include "base/Text.h"
#include "modes/SourceOptions.h"

namespace quillmar {
namespace {

FieldOptions plain(std::span<const std::string_view> values) {
    std::vector<std::string> texts(values.begin(), values.end());
    return {texts, texts};
}

FieldOptions labeled(std::span<const LabeledValue> values, GeneralLanguage language) {
    FieldOptions options;
    for (const auto& [label, value] : values) {
        options.values.emplace_back(value);
        options.labels.push_back(localized(label, language));
    }
    return options;
}

std::size_t indexOf(const FieldOptions& options, const std::string& value) {
    return static_cast<std::size_t>(std::ranges::find(options.values, value) - options.values.begin());
}

}  // namespace

FieldOptions with(FieldOptions options, const std::string& value) {
    if (!isAmong(value, options.values)) {
        options.values.push_back(value);
        options.labels.push_back(value);
    }
    return options;
}

FieldOptions optionsOf(std::string_view field, GeneralLanguage language) {
    if (field == "market") return labeled(bingMarkets(), language);
    if (field == "locale") return labeled(windowsSpotlightLocales(), language);
    if (field == "resolution" || field == "exactResolutions") return plain(wallhavenResolutions());
    if (field == "ratios") return plain(wallhavenRatios());
    if (field == "color") return plain(wallhavenColors());
    return {};
}

SettingsRow& FieldRows::row(decltype(SettingsRow::control) control) {
    SettingsRow& row = rows.emplace_back(SettingsRow{.id = std::string(text_.field),
                                                     .title = localized(text_.title, language_),
                                                     .control = std::move(control)});
    if (text_.subtitle) row.subtitle = localized(*text_.subtitle, language_);
    return row;
}

void FieldRows::member(std::string_view name, std::string label, bool isOn) {
    SettingsRow& added = row(SettingsRow::Toggle{isOn});
    added.id += "." + std::string(name);
    added.title = std::move(label);
}

void FieldRows::add(int value) {
    row(SettingsRow::Number{
        .value = static_cast<double>(value), .minimum = text_.minimum, .maximum = text_.maximum});
}

void FieldRows::add(double value) {
    row(SettingsRow::Duration{.seconds = value, .minimum = text_.minimum, .maximum = text_.maximum});
}

void FieldRows::add(const std::string& value) {
    if (text_.control == FieldControl::color) {
        row(SettingsRow::Color{.text = value});
    } else if (const FieldOptions options = optionsOf(text_.field, language_); options.values.empty()) {
        row(SettingsRow::Entry{.text = value,
                               .isSecret = text_.control == FieldControl::secret,
                               .reveal = localized("Show"_key, language_)});
    } else {
        const FieldOptions all = with(options, value);
        row(SettingsRow::Choice{.choices = all.labels, .chosen = indexOf(all, value)});
    }
}

void FieldRows::add(const std::vector<std::string>& value) {
    FieldOptions options = optionsOf(text_.field, language_);
    for (const std::string& each : value) options = with(std::move(options), each);
    for (std::size_t i = 0; i < options.values.size(); ++i)
        member(options.values[i], options.labels[i], isAmong(options.values[i], value));
}

void FieldRows::add(const std::optional<std::string>& value) {
    FieldOptions options = optionsOf(text_.field, language_);
    if (value) options = with(std::move(options), *value);
    const std::string none = localized("Any"_key, language_);
    if (text_.control == FieldControl::palette) {
        for (std::string& each : options.values) each.insert(0, "#");
        row(SettingsRow::Color{.text = value ? "#" + *value : "", .palette = options.values, .none = none});
    } else {
        const std::size_t chosen = value ? indexOf(options, *value) + 1 : 0;
        options.labels.insert(options.labels.begin(), none);
        row(SettingsRow::Choice{.choices = options.labels, .chosen = chosen});
    }
}

void FieldRows::add(const std::optional<Url>& value) {
    SettingsRow& added = row(SettingsRow::Action{.label = localized("Choose…"_key, language_)});
    added.subtitle = value ? value->displayPath() : localized("None is chosen yet."_key, language_);
}

}  // namespace quillmar
