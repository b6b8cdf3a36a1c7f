#include "commandline/UsageError.h"

namespace quillmar {

std::string UsageError::sentenceIn(GeneralLanguage language, TextKey sentence,
                                   const std::vector<UsageValue>& values) {
    const auto value = [&](std::size_t at) {
        return at < values.size() ? values[at].in(language) : std::string();
    };
    return localized(sentence, language, {value(0), value(1)});
}

std::string UsageError::complaint(GeneralLanguage language) const {
    const std::string command = command_.empty() ? "quillmar help" : "quillmar help " + command_;
    return message(language) + "\n" + localized("See \"%@\"."_key, language, {command}) + "\n";
}

UsageError& UsageError::under(std::string command) {
    command_ = std::move(command);
    return *this;
}

}  // namespace quillmar
