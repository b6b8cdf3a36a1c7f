#pragma once
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/Enum.h"

namespace quillmar {

/// A command line that was not understood, with one sentence on why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A word "--name" or "--name=value".
struct OptionWord {
    std::string name;
    std::optional<std::string> text;
    /// Throws `UsageError` with `complaint` for any other word, which may well be a key and is not repeated.
    static OptionWord parse(const std::string& word, const char* complaint);
};

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

/// Finds the field of a record that is called as an option: give it to the record's `describe`.
class RecordOption {
public:
    /// `takeText` gives the text that belongs to the option; asked once, only where the field needs one.
    RecordOption(std::string name, std::optional<std::string> text,
                 std::function<std::optional<std::string>()> takeText)
        : name_(std::move(name)), text_(std::move(text)), takeText_(std::move(takeText)) {}

    bool isKnown() const { return isKnown_; }
    /// Fields that are records themselves are no options: what the program remembers, or a group of its own.
    template <class T>
    RecordOption& required(std::string_view key, T& field) {
        if constexpr (requires(const OptionValue& value) { value.readInto(field); }) {
            if (key != name_) return *this;
            isKnown_ = true;
            if (!text_ && !std::is_same_v<T, bool>) text_ = takeText_();
            OptionValue(name_, std::move(text_)).readInto(field);
        }
        return *this;
    }
    template <class T>
    RecordOption& optional(std::string_view key, std::optional<T>& field) {
        if constexpr (requires(const OptionValue& value, T& present) { value.readInto(present); }) {
            return required(key, field);
        }
        return *this;
    }

private:
    std::string name_;
    std::optional<std::string> text_;
    std::function<std::optional<std::string>()> takeText_;
    bool isKnown_ = false;
};

}  // namespace quillmar
