#pragma once
#include "platform/SettingsContent.h"

namespace quillmar {

/// What a section of the Settings window shows and does. Main thread.
class PaneModel {
public:
    virtual ~PaneModel() = default;
    virtual SettingsPane content() const = 0;
    /// A wish on one of the pane's rows; one on a row that it does not have is nothing.
    virtual void act(const SettingsIntent& intent) = 0;
    virtual void setExpanded(const std::string&, bool) {}
    /// It is shown from now on; also when it is already and the window was brought to the front.
    virtual void didAppear() {}
    /// Another one is shown, or the window has closed.
    virtual void didDisappear() {}
};

}  // namespace quillmar
