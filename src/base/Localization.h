#pragma once
#include <array>
#include <cstdint>
#include <exception>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillmar {

/// Language of all text in the program.
enum class GeneralLanguage { english, portuguese };
constexpr auto enumNames(GeneralLanguage) {
    return std::to_array<std::string_view>({"english", "portuguese"});
}

/// The first language of a list of preferred languages ("pt_PT", "en-GB", ...) that the program speaks;
/// English when it speaks none of them.
GeneralLanguage preferredLanguage(std::span<const std::string> preferredLanguages);

/// Key of a user-visible text: its English wording. Only `_key` makes one, so that the check of the string
/// tables finds every text of the program in its sources.
class TextKey {
public:
    std::string_view english() const { return text_; }
    bool operator==(const TextKey&) const = default;

private:
    constexpr explicit TextKey(std::string_view text) : text_(text) {}
    friend constexpr TextKey operator""_key(const char*, std::size_t);
    std::string_view text_;
};
constexpr TextKey operator""_key(const char* text, std::size_t length) {
    return TextKey(std::string_view(text, length));
}

/// A value put into a text in place of "%@" or "%lld".
class TextArgument {
public:
    TextArgument(std::string text) : text_(std::move(text)) {}
    TextArgument(std::string_view text) : text_(text) {}
    TextArgument(const char* text) : text_(text) {}
    TextArgument(std::int64_t number);
    TextArgument(int number) : TextArgument(std::int64_t{number}) {}
    const std::string& text() const { return text_; }

private:
    std::string text_;
};

/// The text in `language`: the table's translation, else the key itself.
std::string localized(TextKey key, GeneralLanguage language);
/// The text in `language` with its "%@" and "%lld" replaced by the arguments, in order.
std::string localized(TextKey key, GeneralLanguage language, std::initializer_list<TextArgument> arguments);

/// An expected failure that can say itself in the user's language.
class AppLocalizableError : public std::exception {
public:
    virtual std::string message(GeneralLanguage language) const = 0;
    /// The English message.
    const char* what() const noexcept override;

private:
    mutable std::string english_;
};

/// The text of any error for the user: an `AppLocalizableError` in `language`, any other its own wording.
std::string errorText(const std::exception& error, GeneralLanguage language);
std::string errorText(const std::exception_ptr& error, GeneralLanguage language);

}  // namespace quillmar
