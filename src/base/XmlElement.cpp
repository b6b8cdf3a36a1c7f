#include "base/XmlElement.h"

#include <glib.h>

#include <algorithm>
#include <memory>

#include "base/Text.h"

namespace quillmar {
namespace {

constexpr std::size_t maximumDepth = 32;

std::string localName(std::string_view name) { return std::string(name.substr(name.find(':') + 1)); }

struct Parse {
    XmlElement document;                       ///< holds the outermost element
    std::vector<XmlElement*> open{&document};  ///< the innermost last; nothing is added to those around it
};

void begin(GMarkupParseContext*, const char* name, const char** attributeNames, const char** values,
           gpointer data, GError** error) {
    auto& open = static_cast<Parse*>(data)->open;
    if (open.size() > maximumDepth) {
        g_set_error_literal(error, G_MARKUP_ERROR, G_MARKUP_ERROR_INVALID_CONTENT, "nested too deeply");
        return;
    }
    XmlElement& element = open.back()->children.emplace_back();
    element.name = localName(name);
    for (; *attributeNames; ++attributeNames, ++values)
        element.attributes.emplace(localName(*attributeNames), *values);
    open.push_back(&element);
}

void end(GMarkupParseContext*, const char*, gpointer data, GError**) {
    static_cast<Parse*>(data)->open.pop_back();
}

void addText(GMarkupParseContext*, const char* text, gsize length, gpointer data, GError**) {
    static_cast<Parse*>(data)->open.back()->text.append(text, length);
}

}  // namespace

XmlElement XmlElement::parse(std::string_view document) {
    constexpr GMarkupParser handlers = {begin, end, addText, nullptr, nullptr};
    constexpr auto flags = static_cast<GMarkupParseFlags>(G_MARKUP_TREAT_CDATA_AS_TEXT);
    Parse state;
    const std::unique_ptr<GMarkupParseContext, decltype(&g_markup_parse_context_free)> context(
        g_markup_parse_context_new(&handlers, flags, &state, nullptr), &g_markup_parse_context_free);
    GError* failure = nullptr;
    if (!g_markup_parse_context_parse(context.get(), document.data(), std::ssize(document), &failure) ||
        !g_markup_parse_context_end_parse(context.get(), &failure)) {
        const std::unique_ptr<GError, decltype(&g_error_free)> owned(failure, &g_error_free);
        throw XmlError(failure->message);
    }
    return std::move(state.document.children.front());
}

const XmlElement* XmlElement::child(std::string_view childName) const {
    const auto found = std::ranges::find(children, childName, &XmlElement::name);
    return found == children.end() ? nullptr : &*found;
}

std::string XmlElement::childText(std::string_view childName) const {
    const XmlElement* found = child(childName);
    return found ? std::string(trimmed(found->text)) : "";
}

std::string XmlElement::attribute(std::string_view attributeName) const {
    const auto found = attributes.find(attributeName);
    return found == attributes.end() ? "" : found->second;
}

}  // namespace quillmar
