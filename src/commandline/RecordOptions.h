#pragma once
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Enum.h"
#include "commandline/CommandTable.h"
#include "commandline/UsageError.h"
#include "settings/records/GeneralSettings.h"

namespace quillmar {

/// The value of one option of the command line, as the kinds of fields read it. Throws `UsageError`; the
/// value itself is in no message, for it may be a key.
class OptionValue {
public:
    /// Without a text the option stands alone, which is enough for a truth value.
    OptionValue(std::string name, std::optional<std::string> text)
        : name_(std::move(name)), text_(std::move(text)) {}

    void readInto(bool& field) const;
    void readInto(int& field) const;
    void readInto(double& field) const;
    void readInto(std::string& field) const;
    /// Separated by commas; an empty text is an empty list.
    void readInto(std::vector<std::string>& field) const;
    template <NamedEnum E>
    void readInto(E& field) const {
        field = caseOf<E>(text());
    }
    template <NamedEnum E>
    void readInto(std::set<E>& field) const {
        std::vector<std::string> names;
        readInto(names);
        field.clear();
        for (const std::string& name : names) field.insert(caseOf<E>(name));
    }
    template <class T>
    void readInto(std::optional<T>& field) const {
        readInto(field.emplace());
    }

private:
    const std::string& text() const;
    [[noreturn]] void refuseName(std::span<const std::string_view> names) const;
    template <NamedEnum E>
    E caseOf(const std::string& name) const {
        if (const auto found = enumFromName<E>(name)) return *found;
        static constexpr auto names = enumNames(E{});
        refuseName(names);
    }

    std::string name_;
    std::optional<std::string> text_;
};

/// Whether a field of a record can be set by an option. Records within it cannot: what the program remembers,
/// or a group of its own.
template <class T>
concept OptionField = requires(const OptionValue& value, T& field) { value.readInto(field); };

/// Records whose own fields are options too, as if they stood in the record around it.
template <class T>
inline constexpr bool isOptionGroup = std::is_same_v<T, StatusIconClickBehavior>;

/// Sets the field of a record that an option is called as: give it to the record's `describe`.
class RecordOption {
public:
    RecordOption(std::string_view field, OptionValue value) : field_(field), value_(std::move(value)) {}

    bool isKnown() const { return isKnown_; }
    template <class T>
    RecordOption& required(std::string_view key, T& field) {
        if constexpr (OptionField<T>) {
            if (key == field_) {
                isKnown_ = true;
                value_.readInto(field);
            }
        } else if constexpr (isOptionGroup<T>) {
            T::describe(field, *this);
        }
        return *this;
    }
    template <class T>
    RecordOption& optional(std::string_view key, std::optional<T>& field) {
        if constexpr (OptionField<T>) return required(key, field);
        return *this;
    }

private:
    std::string_view field_;
    OptionValue value_;
    bool isKnown_ = false;
};

/// Collects the options that set the fields of a record: give it to the record's `describe`.
class RecordOptionListing {
public:
    std::vector<OptionRow> options;
    template <class T>
    RecordOptionListing& required(std::string_view key, T& field) {
        if constexpr (OptionField<T>) {
            add<T>(key);
        } else if constexpr (isOptionGroup<T>) {
            T::describe(field, *this);
        }
        return *this;
    }
    template <class T>
    RecordOptionListing& optional(std::string_view key, std::optional<T>&) {
        if constexpr (OptionField<T>) add<T>(key);
        return *this;
    }

private:
    template <class T>
    void add(std::string_view key) {
        OptionRow row{.name = std::string(key), .field = std::string(key), .value = "TEXT"};
        if constexpr (std::is_same_v<T, bool>) {
            row.isTruth = true;
            row.value.clear();
        } else if constexpr (std::is_arithmetic_v<T>) {
            row.value = "NUMBER";
        } else if constexpr (NamedEnum<T>) {
            row.value = "WORD";
            for (const std::string_view name : enumNames(T{})) row.choices.push_back(name);
        } else if constexpr (!std::is_same_v<T, std::string>) {
            row.value = "LIST";
            if constexpr (requires { enumNames(typename T::value_type{}); }) {
                for (const std::string_view name : enumNames(typename T::value_type{}))
                    row.choices.push_back(name);
            }
        }
        options.push_back(std::move(row));
    }
};

/// The options that set a record's fields.
template <class Record>
std::vector<OptionRow> recordOptions() {
    Record record;
    RecordOptionListing listing;
    Record::describe(record, listing);
    return std::move(listing.options);
}

}  // namespace quillmar
