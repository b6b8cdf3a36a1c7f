#include "linux/x11/OutputMemory.h"

#include "base/Files.h"
#include "diagnostics/Log.h"

namespace quillmar {

namespace {

constexpr std::size_t maximumBytes = 1 << 20;

void write(const std::filesystem::path& file, const std::string& text) {
    try {
        createDirectories(file.parent_path(), 0700);
        writeFileAtomically(file, text, 0600);
    } catch (const std::exception&) {
        logWarning("Which monitor is which could not be kept.", "display", std::current_exception());
    }
}

}  // namespace

std::filesystem::path outputIdentitiesFile(const Environment& environment) {
    return applicationStateDirectory(environment) / "outputs";
}

OutputIdentities rememberedIdentities(const std::filesystem::path& file) {
    try {
        return OutputIdentities(readFile(file, maximumBytes));
    } catch (const std::exception&) {
        return {};  // the first start, or a folder that is not to be had: the monitors are as good as new
    }
}

std::vector<Uuid> OutputMemory::identify(const std::vector<ConnectedOutput>& outputs) {
    const OutputIdentities before = identities_;
    auto uuids = identities_.identify(pluggedMonitors(outputs));
    if (identities_ != before) {
        files_.submit([file = file_, text = identities_.text()] { write(file, text); });
    }
    return uuids;
}

}  // namespace quillmar
