#include "diagnostics/ErrorReportQueue.h"

#include <algorithm>
#include <numeric>
#include <system_error>

#include "base/Files.h"
#include "diagnostics/ErrorReport.h"

namespace quillmar {
namespace {

constexpr std::size_t limitCount = 50;
constexpr std::uintmax_t limitBytes = 5242880;

std::uintmax_t sizeOf(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    return error ? 0 : size;
}

}  // namespace

void ErrorReportQueue::prepare() const {
    createDirectories(folder, 0700);
    trim();
}

std::vector<std::string> ErrorReportQueue::pending() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::string name = entry.path().filename().string();
        if (!name.starts_with('.') && name.ends_with(".json")) names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
}

void ErrorReportQueue::trim() const {
    const std::vector<std::string> names = pending();
    std::vector<std::uintmax_t> sizes;
    for (const std::string& name : names) sizes.push_back(sizeOf(folder / name));
    std::uintmax_t sum = std::accumulate(sizes.begin(), sizes.end(), std::uintmax_t{0});
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names.size() - i <= limitCount && sum <= limitBytes) return;
        std::filesystem::remove(folder / names[i]);
        sum -= sizes[i];
    }
}

void ErrorReportQueue::add(const std::string& name, std::string_view payload) const {
    // Not forced to the disk: a storm of reports would wait for it each time, and a power cut may take one.
    writeFileAtomically(folder / name, payload, 0600, Durability::reproducible);
    trim();
}

std::optional<std::string> ErrorReportQueue::readOrRemove(const std::string& name) const {
    try {
        return readFile(folder / name, maximumReportBytes);
    } catch (const std::system_error&) {
        remove(name);
        return std::nullopt;
    }
}

void ErrorReportQueue::remove(const std::string& name) const noexcept {
    std::error_code ignored;
    std::filesystem::remove(folder / name, ignored);
}

}  // namespace quillmar
