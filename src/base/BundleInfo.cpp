#include "base/BundleInfo.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "base/JsonRecord.h"

namespace quillmar {
namespace {

/// A key's value; truth values are told by their words.
struct KeyText {
    std::string text;
};

void read(const nlohmann::json& json, KeyText& value, const json::Place& place) {
    try {
        bool truth = false;
        json::read(json, truth, place);
        value.text = truth ? "true" : "false";
    } catch (const JsonRecordError&) {
        json::read(json, value.text, place);
    }
}

}  // namespace

BundleInfo BundleInfo::load(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream) throw std::runtime_error(file.string() + ": the file could not be read");
    try {
        std::map<std::string, std::string, std::less<>> keys;
        for (auto& [key, value] : json::decode<std::map<std::string, KeyText>>(text)) keys[key] = value.text;
        return BundleInfo(std::move(keys));
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
