#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quillmar {

/// The program's bundle keys: what it is called, which build it is, where its services are.
class BundleInfo {
public:
    BundleInfo() = default;
    explicit BundleInfo(std::map<std::string, std::string, std::less<>> keys) : keys_(std::move(keys)) {}
    /// Reads a JSON object of texts and truth values. Throws `std::runtime_error` with the file's path and
    /// the reason.
    static BundleInfo load(const std::filesystem::path& file);

    /// The key's value; nothing when it is absent or empty.
    std::optional<std::string> value(std::string_view key) const;
    /// `CFBundleIdentifier`.
    std::optional<std::string> identifier() const { return value("CFBundleIdentifier"); }
    /// `QuillmarSemanticVersion`, else `CFBundleShortVersionString`, else `fallback`.
    std::string semanticVersion(std::string_view fallback) const;
    /// `CFBundleDisplayName`, else `CFBundleName`, else "Quillmar".
    std::string displayName() const;

private:
    std::map<std::string, std::string, std::less<>> keys_;
};

}  // namespace quillmar
