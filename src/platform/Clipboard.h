#pragma once
#include <string>

namespace quillmar {

/// What the user pastes from. Main thread.
class ClipboardWriting {
public:
    virtual ~ClipboardWriting() = default;
    /// Replaces what is there by a text.
    virtual void setText(const std::string& text) = 0;
};

}  // namespace quillmar
