#pragma once
#include <functional>
#include <memory>

#include "platform/SettingsContent.h"
#include "ui/settings/Widgets.h"

namespace quillmar {

/// What stands in a row to change its value with. Its widgets belong to the row that they are put into.
class RowControl {
public:
    using Value = decltype(SettingsIntent::value);
    /// Told what the control is set to, also while it is shown another state.
    using Wish = std::function<void(Value)>;

    RowControl() = default;
    RowControl(const RowControl&) = delete;
    RowControl& operator=(const RowControl&) = delete;
    virtual ~RowControl() = default;

    virtual GtkWidget* widget() const = 0;
    /// What has the focus, and is called by the row's name.
    virtual GtkWidget* field() const { return widget(); }
    /// Another state of a row with a control of the same kind. What somebody is typing stays as it is.
    virtual void show(const SettingsRow& row) = 0;
    /// Whether a click on the row is one on the control.
    virtual bool isActivatedByRow() const { return false; }
};

/// The control of a row; null for one that only says something.
std::unique_ptr<RowControl> makeRowControl(const SettingsRow& row, RowControl::Wish wish);

std::unique_ptr<RowControl> makeEntryControl(const SettingsRow::Entry& entry, RowControl::Wish wish);
std::unique_ptr<RowControl> makeNumberControl(RowControl::Wish wish);
std::unique_ptr<RowControl> makeDurationControl(RowControl::Wish wish);
std::unique_ptr<RowControl> makeColorControl(const SettingsRow::Color& color, RowControl::Wish wish);
std::unique_ptr<RowControl> makeGalleryControl(RowControl::Wish wish);

/// Another text for an entry, without moving the cursor of somebody who has just typed that.
void setEntryText(GtkEntry* entry, const std::string& text);

}  // namespace quillmar
