#pragma once
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Enum.h"
#include "panes/wallpaper/ModeFields.h"
#include "platform/SettingsContent.h"

namespace quillmar {

/// Changes one field as its rows' intents say: give it to the record's `describe`. An intent that does not
/// fit the field changes nothing.
class FieldChange {
public:
    using Wish = decltype(SettingsIntent::value);
    /// `member` is that of a list or a set; empty for fields with one row.
    FieldChange(std::string_view field, std::string_view member, const Wish& wish)
        : field_(field), member_(member), wish_(wish) {}

    template <class T>
    FieldChange& required(std::string_view key, T& value) {
        if (key == field_) set(value);
        return *this;
    }
    template <class T>
    FieldChange& optional(std::string_view key, std::optional<T>& value) {
        if (key == field_) set(value);
        return *this;
    }

private:
    template <class T>
    const T* wished() const {
        return std::get_if<T>(&wish_);
    }
    void set(bool& value) const;
    void set(int& value) const;
    void set(double& value) const;
    void set(std::string& value) const;
    void set(std::vector<std::string>& value) const;
    void set(std::optional<std::string>& value) const;
    template <NamedEnum E>
    void set(E& value) const {
        if (const auto* index = wished<std::size_t>(); index && *index < allCases<E>().size())
            value = static_cast<E>(*index);
    }
    template <NamedEnum E>
    void set(std::set<E>& value) const {
        const auto named = enumFromName<E>(member_);
        const bool* isOn = wished<bool>();
        if (named && isOn && *isOn) value.insert(*named);
        if (named && isOn && !*isOn) value.erase(*named);
    }
    /// Files are chosen in a dialog, not by a wish.
    template <class T>
    void set(T&) const {}

    std::string_view field_;
    std::string_view member_;
    const Wish& wish_;
};

/// Whether a field has a value: give it to the record's `describe`.
class FieldHas {
public:
    explicit FieldHas(const FieldText::Need& need) : need_(need) {}
    bool isSo = false;

    template <class T>
    FieldHas& required(std::string_view key, const T& value) {
        if (key == need_.field) isSo = has(value);
        return *this;
    }
    template <class T>
    FieldHas& optional(std::string_view, const std::optional<T>&) {
        return *this;
    }

private:
    bool has(bool value) const { return need_.value == (value ? "true" : "false"); }
    template <NamedEnum E>
    bool has(const E& value) const {
        return enumName(value) == need_.value;
    }
    template <NamedEnum E>
    bool has(const std::set<E>& value) const {
        const auto named = enumFromName<E>(need_.value);
        return named && value.contains(*named);
    }
    template <class T>
    bool has(const T&) const {
        return false;
    }

    const FieldText::Need& need_;
};

}  // namespace quillmar
