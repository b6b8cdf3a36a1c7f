#include "base/Url.h"

#include <glib.h>

#include <memory>

#include "base/Text.h"

namespace quillmar {
namespace {

/// The parts of a URL, their escapes as they stand; one that is not there is empty.
struct Parts {
    std::string scheme, host, path, query;
    int port = -1;
};

std::string taken(char* text) {
    const std::unique_ptr<char, decltype(&g_free)> owner(text, &g_free);
    return text ? text : "";
}

std::optional<Parts> split(const std::string& text) {
    // Relaxed, with escapes kept: servers hand out stray percent signs, and a file name need not be UTF-8.
    constexpr auto flags =
        static_cast<GUriFlags>(G_URI_FLAGS_PARSE_RELAXED | G_URI_FLAGS_ENCODED | G_URI_FLAGS_NON_DNS);
    char *scheme = nullptr, *host = nullptr, *path = nullptr, *query = nullptr;
    int port = -1;
    if (!g_uri_split(text.c_str(), flags, &scheme, nullptr, &host, &port, &path, &query, nullptr, nullptr)) {
        return std::nullopt;
    }
    return Parts{taken(scheme), taken(host), taken(path), taken(query), port};
}

Parts partsOf(const std::string& text) { return split(text).value_or(Parts()); }

/// An escape that is none stays as it stands: servers hand out such URLs.
std::string unescaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && g_ascii_isxdigit(text[i + 1]) &&
            g_ascii_isxdigit(text[i + 2])) {
            result +=
                static_cast<char>(g_ascii_xdigit_value(text[i + 1]) * 16 + g_ascii_xdigit_value(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

bool holdsOnlyVisibleCharacters(std::string_view text) {
    if (!isValidUtf8(text)) return false;
    for (const char *p = text.data(), *end = p + text.size(); p < end; p = g_utf8_next_char(p)) {
        const gunichar c = g_utf8_get_char(p);
        if (c > 0x20 && c < 0x7f) continue;
        if (c <= 0x20 || g_unichar_isspace(c) || g_unichar_iscntrl(c)) return false;
    }
    return true;
}

}  // namespace

std::optional<Url> Url::parse(std::string_view text) {
    if (text.empty() || !holdsOnlyVisibleCharacters(text)) return std::nullopt;
    std::string kept(text);
    if (!split(kept)) return std::nullopt;
    return Url(std::move(kept));
}

Url Url::fromFilePath(const std::filesystem::path& path) {
    const std::unique_ptr<char, decltype(&g_free)> escaped(
        g_uri_escape_string(path.c_str(), "/!$&'()*+,:=@", FALSE), &g_free);
    return Url(std::string("file://") + escaped.get());
}

std::string Url::scheme() const { return partsOf(text_).scheme; }
std::string Url::host() const { return unescaped(partsOf(text_).host); }

std::optional<int> Url::port() const {
    const int port = partsOf(text_).port;
    return port < 0 ? std::nullopt : std::optional(port);
}

std::string Url::path() const { return unescaped(partsOf(text_).path); }
std::string Url::query() const { return partsOf(text_).query; }

std::optional<std::filesystem::path> Url::filePath() const {
    if (!isFileURL()) return std::nullopt;
    const std::string hostName = lowercased(host());
    std::string path = this->path();
    const bool isHere = hostName.empty() || hostName == "localhost";
    // A NUL would end the path early at the system call and reach another file than the one that was checked.
    if (!isHere || !path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
    return std::filesystem::path(std::move(path));
}

std::string Url::displayPath() const {
    const auto path = filePath();
    return path ? path->string() : text_;
}

Url Url::standardized() const {
    const auto path = filePath();
    if (!path) return *this;
    const std::string& given = path->native();
    // Most are, and folders have a hundred thousand of them.
    if (given.starts_with('/') && !given.contains("//") && !given.contains("/.")) return fromFilePath(*path);
    std::string normal = path->lexically_normal().string();
    while (normal.starts_with("//")) normal.erase(0, 1);
    const bool endsWithSlash = path->native().ends_with('/');
    if (!endsWithSlash && normal.size() > 1 && normal.ends_with('/')) normal.pop_back();
    return fromFilePath(normal);
}

}  // namespace quillmar
