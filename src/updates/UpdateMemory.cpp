#include "updates/UpdateMemory.h"

#include "base/FileError.h"
#include "base/Files.h"
#include "base/JsonRecord.h"
#include "base/SemanticVersion.h"
#include "diagnostics/Log.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumBytes = 65536;

bool isNewer(const std::string& version, const std::string& currentVersion) {
    const auto found = SemanticVersion::parse(version);
    const auto current = SemanticVersion::parse(currentVersion);
    return found && current && *found > *current;
}

void dropOldNews(UpdateMemory& memory, const std::string& currentVersion) {
    if (!memory.available) return;
    auto& [version, page, file] = *memory.available;
    std::error_code ignored;  // a download that stays is the user's to remove
    const bool isNews = isNewer(version, currentVersion);
    if (file && !isNews) fs::remove(*file, ignored);
    if (file && !fs::exists(*file, ignored)) file.reset();
    if (!isNews) memory.available.reset();
}

}  // namespace

UpdateMemory loadUpdateMemory(const fs::path& file, const std::string& currentVersion) {
    UpdateMemory memory;
    try {
        memory = json::decode<UpdateMemory>(readFile(file, maximumBytes));
    } catch (const std::system_error&) {  // the first start
    } catch (const std::exception&) {
        logWarning("What was known of updates could not be read.", "updates", std::current_exception());
        memory = {};
    }
    dropOldNews(memory, currentVersion);
    return memory;
}

void saveUpdateMemory(const fs::path& file, const UpdateMemory& memory) {
    try {
        createDirectories(file.parent_path(), 0700);
        writeFileAtomically(file, json::encode(memory), 0600);
    } catch (const std::system_error& error) {
        throw FileError(file, error);
    }
}

}  // namespace quillmar
