#pragma once
#include <string>

namespace quillmar {

/// The window in which the user changes settings. Main thread.
class SettingsWindowing {
public:
    virtual ~SettingsWindowing() = default;
    virtual bool isVisible() const = 0;
    /// Closes the window as its close button does; it may ask the user first.
    virtual void performClose() = 0;
    /// Brings the window to the front at a section: "backup", "about", ... Empty: the one that was open last.
    virtual void open(const std::string& section) = 0;
};

}  // namespace quillmar
