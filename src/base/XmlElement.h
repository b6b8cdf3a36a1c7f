#pragma once
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillmar {

/// A text that is no XML, with the parser's reason.
class XmlError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An element of an XML document with what is in it. Names stand without the prefix of their namespace. A
/// document's own entities are not known: one that names them is refused, so none can unfold.
struct XmlElement {
    std::string name;
    std::map<std::string, std::string, std::less<>> attributes;
    std::string text;  ///< its own, without that of its children
    std::vector<XmlElement> children;

    /// The outermost element. Throws `XmlError`, also for elements within each other beyond all use.
    static XmlElement parse(std::string_view document);

    /// The first child of that name; null when there is none.
    const XmlElement* child(std::string_view childName) const;
    /// The child's text without blanks at its ends; empty when there is none.
    std::string childText(std::string_view childName) const;
    /// Empty when there is none.
    std::string attribute(std::string_view attributeName) const;
};

}  // namespace quillmar
