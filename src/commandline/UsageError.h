#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Localization.h"
#include "modes/WallpaperApplicationError.h"

namespace quillmar {

/// What fills in a sentence: a word of the user's, or a text of the program's.
class UsageValue {
public:
    UsageValue(std::string word) : word_(std::move(word)) {}
    UsageValue(TextKey text) : text_(text) {}
    std::string in(GeneralLanguage language) const { return text_ ? localized(*text_, language) : word_; }

private:
    std::string word_;
    std::optional<TextKey> text_;
};

/// A command line that was not understood, or asks for what cannot be.
class UsageError final : public AppLocalizableError {
public:
    /// `values` fill in the sentence; two at most.
    explicit UsageError(TextKey sentence, std::vector<UsageValue> values = {})
        : sentence_([sentence, values = std::move(values)](GeneralLanguage language) {
              return sentenceIn(language, sentence, values);
          }) {}
    explicit UsageError(const WallpaperApplicationError& refusal)
        : sentence_([refusal](GeneralLanguage language) { return refusal.message(language); }) {}

    /// What was wrong, in one sentence.
    std::string message(GeneralLanguage language) const override { return sentence_(language); }
    /// The sentence, and the line that says which help to read.
    std::string complaint(GeneralLanguage language) const;
    /// The words of the command whose help tells more: "wallpaper set"; empty for that of all.
    UsageError& under(std::string command);

private:
    static std::string sentenceIn(GeneralLanguage language, TextKey sentence,
                                  const std::vector<UsageValue>& values);

    std::function<std::string(GeneralLanguage)> sentence_;
    std::string command_;
};

/// The exit status of a call that was not understood.
inline constexpr int usageStatus = 2;

}  // namespace quillmar
