#include "remote/services/ServiceAnswer.h"

#include "base/Text.h"

namespace quillmar {

std::optional<Url> webAddress(const std::optional<std::string>& text) {
    auto url = text ? Url::parse(*text) : std::nullopt;
    if (!url || (url->scheme() != "http" && url->scheme() != "https") || url->host().empty()) return {};
    return url;
}

std::optional<std::string> webAddressText(const std::optional<std::string>& text) {
    constexpr std::size_t longest = 1024;  // half an address leads nowhere
    return webAddress(text) && text->size() <= longest ? text : std::nullopt;
}

std::optional<std::string> unlessBlank(std::optional<std::string> text) {
    if (text && trimmed(*text).empty()) text.reset();
    return text;
}

}  // namespace quillmar
