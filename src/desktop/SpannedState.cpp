#include "desktop/SpannedState.h"

#include <system_error>

#include "base/Files.h"
#include "base/JsonRecord.h"
#include "diagnostics/Log.h"

namespace quillmar {

namespace {

constexpr std::size_t maximumBytes = 1 << 20;

}  // namespace

SpannedState SpannedState::load(const std::filesystem::path& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) return {};
    try {
        return json::decode<SpannedState>(readFile(file, maximumBytes));
    } catch (const std::exception&) {
        logWarning("What the desktop picture was composed from could not be read.", "wallpaper",
                   std::current_exception());
        return {};
    }
}

void SpannedState::save(const std::filesystem::path& file) const {
    writeFileAtomically(file, json::encode(*this), 0600);
}

}  // namespace quillmar
