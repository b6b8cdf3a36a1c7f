#include "base/BundleInfo.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "base/JsonRecord.h"

namespace quillmar {

BundleInfo BundleInfo::load(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream) throw std::runtime_error(file.string() + ": the file could not be read");
    try {
        const auto keys = json::decode<std::map<std::string, std::string>>(text);
        return BundleInfo({keys.begin(), keys.end()});
    } catch (const JsonRecordError& error) {
        throw std::runtime_error(file.string() + ": " + error.what());
    }
}

std::optional<std::string> BundleInfo::value(std::string_view key) const {
    const auto found = keys_.find(key);
    if (found == keys_.end() || found->second.empty()) return std::nullopt;
    return found->second;
}

std::string BundleInfo::semanticVersion(std::string_view fallback) const {
    if (const auto version = value("QuillmarSemanticVersion")) return *version;
    return value("CFBundleShortVersionString").value_or(std::string(fallback));
}

std::string BundleInfo::displayName() const {
    if (const auto name = value("CFBundleDisplayName")) return *name;
    return value("CFBundleName").value_or("Quillmar");
}

}  // namespace quillmar
