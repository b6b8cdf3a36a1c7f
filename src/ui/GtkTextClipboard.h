#pragma once
#include "platform/Clipboard.h"

namespace quillmar {

/// The clipboard of the display server.
class GtkTextClipboard final : public ClipboardWriting {
public:
    void setText(const std::string& text) override;
};

}  // namespace quillmar
