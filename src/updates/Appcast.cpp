#include "updates/Appcast.h"

#include <algorithm>
#include <charconv>

#include "base/Text.h"
#include "base/UrlEditing.h"
#include "base/XmlElement.h"
#include "updates/SoftwareUpdateError.h"

namespace quillmar {
namespace {

using Error = SoftwareUpdateError;

std::string firstOf(std::initializer_list<std::string> texts) {
    for (const std::string& text : texts) {
        if (!text.empty()) return text;
    }
    return {};
}

std::optional<Url> webPage(const Url& base, const std::string& reference) {
    const auto url = resolvedReference(base, reference);
    if (!url || (url->scheme() != "https" && url->scheme() != "http") || url->host().empty())
        return std::nullopt;
    return url;
}

std::optional<std::int64_t> lengthOf(const std::string& text) {
    std::int64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error != std::errc() || end != text.data() + text.size() || length <= 0) return std::nullopt;
    return length;
}

std::optional<AppcastItem> itemOf(const XmlElement& element, const Url& base) {
    const XmlElement* enclosure = element.child("enclosure");
    // Test versions are for those who ask for them, and nobody can here.
    if (!enclosure || element.child("channel")) return std::nullopt;
    const std::string system = lowercased(enclosure->attribute("os"));
    if (!system.empty() && system != "linux") return std::nullopt;
    const std::string text =
        firstOf({element.childText("shortVersionString"), enclosure->attribute("shortVersionString"),
                 element.childText("version"), enclosure->attribute("version")});
    auto version = SemanticVersion::parse(text);
    const auto file = resolvedReference(base, enclosure->attribute("url"));
    if (!version || !file) return std::nullopt;
    const std::string page = firstOf({element.childText("link"), element.childText("fullReleaseNotesLink"),
                                      element.childText("releaseNotesLink")});
    return AppcastItem{.version = *std::move(version),
                       .versionText = text,
                       .page = webPage(base, page),
                       .file = *file,
                       .signature = base64Decoded(enclosure->attribute("edSignature")).value_or(Bytes()),
                       .length = lengthOf(enclosure->attribute("length"))};
}

}  // namespace

std::vector<AppcastItem> parseAppcast(std::string_view text, const Url& base) {
    XmlElement document;
    try {
        document = XmlElement::parse(text);
    } catch (const XmlError& error) {
        throw Error(Error::Case::notAFeed, error.what());
    }
    const XmlElement* channel = document.child("channel");
    if (document.name != "rss" || !channel) throw Error(Error::Case::notAFeed, "<" + document.name + ">");
    std::vector<AppcastItem> items;
    for (const XmlElement& element : channel->children) {
        if (element.name != "item") continue;
        if (auto item = itemOf(element, base)) items.push_back(*std::move(item));
    }
    return items;
}

const AppcastItem* newest(const std::vector<AppcastItem>& items, const SemanticVersion& current) {
    const auto found = std::ranges::max_element(items, {}, &AppcastItem::version);
    return found == items.end() || found->version <= current ? nullptr : &*found;
}

}  // namespace quillmar
