#pragma once
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Enum.h"
#include "base/Url.h"
#include "panes/wallpaper/ModeFields.h"
#include "panes/wallpaper/ModeLabels.h"
#include "platform/SettingsContent.h"

namespace quillmar {

/// An enumeration whose cases a person can choose from.
template <class E>
concept LabeledEnum =
    NamedEnum<E> && requires(E value, GeneralLanguage language) { labelOf(value, language); };

/// What a text or a list of texts can hold. Empty: anything.
struct FieldOptions {
    std::vector<std::string> values;
    std::vector<std::string> labels;  ///< what a person calls each
};
FieldOptions optionsOf(std::string_view field, GeneralLanguage language);
/// The same with what stands in the settings, though it is offered no more.
FieldOptions with(FieldOptions options, const std::string& value);

/// The rows of one field, with its value: give it to the record's `describe`. Most fields have one row; of a
/// list or a set each member has one.
class FieldRows {
public:
    FieldRows(const FieldText& text, GeneralLanguage language) : text_(text), language_(language) {}

    std::vector<SettingsRow> rows;

    template <class T>
    FieldRows& required(std::string_view key, const T& value) {
        if (key == text_.field) add(value);
        return *this;
    }
    template <class T>
    FieldRows& optional(std::string_view key, const std::optional<T>& value) {
        if (key == text_.field) add(value);
        return *this;
    }

private:
    SettingsRow& row(decltype(SettingsRow::control) control);
    void member(std::string_view name, std::string label, bool isOn);
    void add(bool value) { row(SettingsRow::Toggle{value}); }
    void add(int value);
    void add(double value);
    void add(const std::string& value);
    void add(const std::vector<std::string>& value);
    void add(const std::optional<std::string>& value);
    void add(const std::optional<Url>& value);
    template <LabeledEnum E>
    void add(const E& value) {
        SettingsRow::Choice choice{.choices = {}, .chosen = static_cast<std::size_t>(value)};
        for (const E each : allCases<E>()) choice.choices.push_back(labelOf(each, language_));
        row(std::move(choice));
    }
    template <LabeledEnum E>
    void add(const std::set<E>& value) {
        for (const E each : allCases<E>())
            member(enumName(each), labelOf(each, language_), value.contains(each));
    }
    /// What the program remembers has no rows, and what has no editor yet.
    template <class T>
    void add(const T&) {}

    const FieldText& text_;
    GeneralLanguage language_;
};

}  // namespace quillmar
