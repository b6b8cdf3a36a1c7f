#pragma once
#include "platform/AlertPresenting.h"

namespace quillmar {

/// Alerts as dialogs of their own. Needs a display connection that is open.
class GtkAlerts final : public AlertPresenting {
public:
    Task<std::size_t> runModal(Alert alert) override;
};

}  // namespace quillmar
