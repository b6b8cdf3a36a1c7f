#include "storage/InstalledProgram.h"

#include <unistd.h>

namespace quillmar {
namespace {

namespace fs = std::filesystem;

/// The first of the places below the program's folder where there is such a file, else the last.
fs::path found(std::initializer_list<std::string_view> places, std::string_view name) {
    const fs::path folder = fs::canonical("/proc/self/exe").parent_path();
    fs::path file;
    for (const std::string_view place : places) {
        file = (folder / place / name).lexically_normal();
        std::error_code failure;
        if (fs::exists(file, failure)) return file;
    }
    return file;
}

}  // namespace

Environment processEnvironment() {
    Environment environment;
    for (const char* const* entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string_view::npos)
            environment.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return environment;
}

BundleInfo loadBundleInfo(const Environment& environment) {
    if (const auto named = environment.find("QUILLMAR_INFO");
        named != environment.end() && !named->second.empty()) {
        return BundleInfo::load(named->second);
    }
    return BundleInfo::load(found({".", "../share/quillmar", "../../share/quillmar"}, "Info.json"));
}

fs::path iconThemesFolder() { return found({".", "../share", "../../share"}, "icons"); }

fs::path companionProgram(std::string_view name) { return found({".", "../libexec/quillmar"}, name); }

fs::path calledProgram() { return found({".", "../../bin"}, "quillmar"); }

}  // namespace quillmar
