#include "base/Regex.h"

#include <fmt/format.h>
#include <glib.h>

#include <stdexcept>

#include "base/Text.h"

namespace quillmar {
namespace {

struct GlibFree {
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(char* text) const { g_free(text); }
};

}  // namespace

struct Regex::Compiled {
    explicit Compiled(GRegex* r) : regex(r) {}
    Compiled(const Compiled&) = delete;
    Compiled& operator=(const Compiled&) = delete;
    ~Compiled() { g_regex_unref(regex); }
    GRegex* regex;
};

Regex::Regex(std::string_view pattern) {
    GError* error = nullptr;
    GRegex* regex = g_regex_new(std::string(pattern).c_str(), G_REGEX_OPTIMIZE, GRegexMatchFlags(0), &error);
    if (!regex) {
        const std::unique_ptr<GError, GlibFree> owned(error);
        throw std::invalid_argument(
            fmt::format("\"{}\" is no regular expression: {}", pattern, owned->message));
    }
    compiled_ = std::make_unique<Compiled>(regex);
}

Regex::Regex(Regex&&) noexcept = default;
Regex& Regex::operator=(Regex&&) noexcept = default;
Regex::~Regex() = default;

std::string Regex::replacingMatches(std::string_view text, const std::string& replacement) const {
    const bool isClean = isValidUtf8(text) && text.find('\0') == std::string_view::npos;
    std::string repaired;
    if (!isClean) {
        repaired = repairedUtf8(text);
        // GLib ends a text at its first zero byte, and the rest would vanish unread.
        for (std::size_t at = 0; (at = repaired.find('\0', at)) != std::string::npos;) {
            repaired.replace(at, 1, "\xef\xbf\xbd");
        }
        text = repaired;
    }
    GError* error = nullptr;
    const std::unique_ptr<char, GlibFree> result(
        g_regex_replace(compiled_->regex, text.data(), static_cast<gssize>(text.size()), 0,
                        replacement.c_str(), GRegexMatchFlags(0), &error));
    if (!result) {
        const std::unique_ptr<GError, GlibFree> owned(error);
        throw std::runtime_error(owned ? owned->message : "the regular expression could not be applied");
    }
    return result.get();
}

std::string Regex::escaped(std::string_view text) {
    const std::unique_ptr<char, GlibFree> result(
        g_regex_escape_string(text.data(), static_cast<gint>(text.size())));
    return result.get();
}

}  // namespace quillmar
