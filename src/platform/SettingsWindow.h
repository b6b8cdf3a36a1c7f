#pragma once
#include <string>

#include "platform/SettingsContent.h"

namespace quillmar {

/// The window in which the user changes settings. Main thread.
class SettingsWindowing {
public:
    virtual ~SettingsWindowing() = default;
    /// What the window shows; given before it is opened, and taken away with null before the content dies.
    virtual void setContent(SettingsContent* content) = 0;
    virtual bool isVisible() const = 0;
    /// Closes the window as its close button does; it may ask the user first.
    virtual void performClose() = 0;
    /// Brings the window to the front at a section: "backup", "about", ... Where it is empty, at the last
    /// one. Throws `AppLocalizableError` where there is no window to be had.
    virtual void open(const std::string& section) = 0;
};

}  // namespace quillmar
