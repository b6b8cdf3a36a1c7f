#pragma once
#include <optional>
#include <string>
#include <vector>

#include "async/Task.h"

namespace quillmar {

/// A question to the user. All texts are in the user's language; `title`, `text` and `buttons` are plain
/// text.
struct Alert {
    enum class Style { informational, warning, critical };
    Style style = Style::warning;
    std::string title;
    std::string text;
    std::vector<std::string> buttons;          ///< at least one; the first is the one that Return presses
    std::optional<std::size_t> closingButton;  ///< the one that Escape presses; the last where it is empty
};

/// Shows alerts. Main thread.
class AlertPresenting {
public:
    virtual ~AlertPresenting() = default;
    /// Shows the alert in front of everything and waits for the answer: the index of the pressed button,
    /// the closing one's when the alert was closed. It goes away when the waiting task is cancelled or
    /// destroyed.
    virtual Task<std::size_t> runModal(Alert alert) = 0;
};

}  // namespace quillmar
