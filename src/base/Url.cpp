#include "base/Url.h"

#include <glib.h>

#include <charconv>
#include <memory>

#include "base/Text.h"

namespace quillmar {
namespace {

/// Where the parts of a URL lie in its text.
struct Parts {
    std::string_view scheme;
    bool hasAuthority = false;
    std::string_view host;
    std::string_view port;
    std::string_view path;
    std::string_view query;
    bool isSound = true;
};

std::string_view takeScheme(std::string_view& rest) {
    const std::size_t end = rest.find_first_of(":/?#");
    if (end == std::string_view::npos || end == 0 || rest[end] != ':') return {};
    const std::string_view scheme = rest.substr(0, end);
    if (!g_ascii_isalpha(scheme.front())) return {};
    for (const char c : scheme) {
        if (!g_ascii_isalnum(c) && c != '+' && c != '-' && c != '.') return {};
    }
    rest.remove_prefix(end + 1);
    return scheme;
}

void splitAuthority(std::string_view authority, Parts& parts) {
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos)
        authority.remove_prefix(at + 1);
    std::size_t end = authority.find(':');
    if (authority.starts_with('[')) {
        const std::size_t bracket = authority.find(']');
        parts.isSound = bracket != std::string_view::npos;
        if (!parts.isSound) return;
        parts.host = authority.substr(1, bracket - 1);
        end = bracket + 1;
        if (end < authority.size() && authority[end] != ':') parts.isSound = false;
    } else {
        parts.host = authority.substr(0, end);
    }
    if (end < authority.size()) parts.port = authority.substr(end + 1);
    parts.isSound = parts.isSound && parts.port.find_first_not_of("0123456789") == std::string_view::npos;
}

Parts split(std::string_view text) {
    Parts parts;
    text = text.substr(0, text.find('#'));
    parts.scheme = takeScheme(text);
    if (text.starts_with("//")) {
        parts.hasAuthority = true;
        text.remove_prefix(2);
        const std::size_t end = std::min(text.find_first_of("/?"), text.size());
        splitAuthority(text.substr(0, end), parts);
        text.remove_prefix(end);
    }
    const std::size_t mark = text.find('?');
    parts.path = text.substr(0, mark);
    if (mark != std::string_view::npos) parts.query = text.substr(mark + 1);
    return parts;
}

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
    if (text.empty() || !holdsOnlyVisibleCharacters(text) || !split(text).isSound) return std::nullopt;
    return Url(std::string(text));
}

Url Url::fromFilePath(const std::filesystem::path& path) {
    const std::unique_ptr<char, decltype(&g_free)> escaped(
        g_uri_escape_string(path.c_str(), "/!$&'()*+,:=@", FALSE), &g_free);
    return Url(std::string("file://") + escaped.get());
}

std::string Url::scheme() const { return lowercased(split(text_).scheme); }
std::string Url::host() const { return unescaped(split(text_).host); }

std::optional<int> Url::port() const {
    const std::string_view text = split(text_).port;
    int port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc()) return std::nullopt;
    return port;
}

std::string Url::path() const { return unescaped(split(text_).path); }
std::string Url::query() const { return std::string(split(text_).query); }

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
    std::string normal = path->lexically_normal().string();
    while (normal.starts_with("//")) normal.erase(0, 1);
    const bool endsWithSlash = path->native().ends_with('/');
    if (!endsWithSlash && normal.size() > 1 && normal.ends_with('/')) normal.pop_back();
    return fromFilePath(normal);
}

}  // namespace quillmar
