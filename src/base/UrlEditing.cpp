#include "base/UrlEditing.h"

#include <glib.h>

#include <memory>

#include "base/Text.h"

namespace quillmar {
namespace {

using Text = std::unique_ptr<char, decltype(&g_free)>;

std::string escaped(std::string_view text, const char* alsoAllowed) {
    const Text result(g_uri_escape_string(std::string(text).c_str(), alsoAllowed, FALSE), &g_free);
    return result.get();
}

/// Splits off the part from the first of `marks` on.
std::pair<std::string, std::string> splitAt(const std::string& text, const char* marks) {
    const std::size_t end = std::min(text.find_first_of(marks), text.size());
    return {text.substr(0, end), text.substr(end)};
}

/// Where the path of an absolute URL begins in its text.
std::size_t pathStart(const std::string& text) {
    const std::size_t authority = text.find("://");
    if (authority == std::string::npos) return 0;
    return std::min(text.find_first_of("/?#", authority + 3), text.size());
}

Url known(const Url& fallback, const std::string& text) { return Url::parse(text).value_or(fallback); }

}  // namespace

Url appendingQueryItems(const Url& url, const std::vector<QueryItem>& items) {
    auto [text, fragment] = splitAt(url.string(), "#");
    char separator = text.find('?') == std::string::npos ? '?' : '&';
    if (text.ends_with('?') || text.ends_with('&')) separator = '\0';
    for (const auto& [name, value] : items) {
        if (separator != '\0') text += separator;
        text += escaped(name, "") + "=" + escaped(value, "/:,*");
        separator = '&';
    }
    return known(url, text + fragment);
}

Url appendingPath(const Url& url, std::string_view path) {
    auto [text, rest] = splitAt(url.string(), "?#");
    while (text.ends_with('/')) text.pop_back();
    while (path.starts_with('/')) path.remove_prefix(1);
    return known(url, text + "/" + std::string(path) + rest);
}

std::string escapedPathComponent(std::string_view text) { return escaped(text, "!$&'()*+,:=@"); }

std::optional<Url> resolvedReference(const Url& base, std::string_view reference) {
    if (!Url::parse(reference)) return std::nullopt;
    const Text result(g_uri_resolve_relative(base.string().c_str(), std::string(reference).c_str(),
                                             G_URI_FLAGS_ENCODED, nullptr),
                      &g_free);
    if (!result) return std::nullopt;
    return Url::parse(result.get());
}

Url withAuthorityOf(const Url& url, const Url& authority) {
    const std::string& own = url.string();
    const std::string& other = authority.string();
    std::string path = own.substr(pathStart(own));
    if (!path.starts_with('/')) path.insert(0, "/");
    return known(url, other.substr(0, pathStart(other)) + path);
}

std::string pathExtension(const Url& url) {
    const std::string path = url.path();
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == name.size()) return {};
    return lowercased(name.substr(dot + 1));
}

}  // namespace quillmar
