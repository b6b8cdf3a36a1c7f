#include "commandline/LocaleLanguages.h"

namespace quillmar {

std::vector<std::string> localeLanguages(const Environment& environment) {
    std::vector<std::string> languages;
    const auto value = [&](const char* name) {
        const auto found = environment.find(name);
        return found == environment.end() ? std::string_view() : std::string_view(found->second);
    };
    std::string_view listed = value("LANGUAGE");
    while (!listed.empty()) {
        const std::string_view language = listed.substr(0, listed.find(':'));
        if (!language.empty()) languages.emplace_back(language);
        listed.remove_prefix(std::min(listed.size(), language.size() + 1));
    }
    // Only the first of these counts, as for every program.
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (value(name).empty()) continue;
        languages.emplace_back(value(name));
        break;
    }
    return languages;
}

}  // namespace quillmar
