#include "linux/glib/PreferredLanguages.h"

#include <glib.h>

namespace quillmar {

std::vector<std::string> preferredLanguages() {
    std::vector<std::string> languages;
    for (const char* const* name = g_get_language_names(); *name; ++name) languages.emplace_back(*name);
    return languages;
}

}  // namespace quillmar
