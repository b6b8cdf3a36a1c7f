#pragma once
#include <compare>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillmar {

/// An absolute or relative URL, kept as the text it was made from. Two are equal when their texts are.
class Url {
public:
    /// Nothing for a text that is no URL (empty, or with characters that no URL may hold).
    static std::optional<Url> parse(std::string_view text);
    /// The "file:" URL of an absolute path.
    static Url fromFilePath(const std::filesystem::path& path);

    const std::string& string() const { return text_; }
    /// Lower-case scheme, empty when the URL is relative.
    std::string scheme() const;
    /// Host without port and user, empty when there is none.
    std::string host() const;
    std::optional<int> port() const;
    /// Path with its percent escapes resolved.
    std::string path() const;
    std::string query() const;
    bool isFileURL() const { return scheme() == "file"; }
    /// The path in the file system, when this is a "file:" URL of this machine.
    std::optional<std::filesystem::path> filePath() const;
    /// The path for a person to read: the file path of a file URL, else the URL's text.
    std::string displayPath() const;
    /// The file URL with "." and ".." and doubled slashes resolved in its text; other URLs unchanged.
    Url standardized() const;

    auto operator<=>(const Url&) const = default;

private:
    explicit Url(std::string text) : text_(std::move(text)) {}
    std::string text_;
};

}  // namespace quillmar
