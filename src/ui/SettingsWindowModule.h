#pragma once
#include <filesystem>
#include <memory>

#include "platform/SettingsWindow.h"

namespace quillmar {

/// The Settings window, whose views and their libraries are loaded when it is first opened: a program that
/// nobody looks at does not carry them.
class SettingsWindowModule final : public SettingsWindowing {
public:
    /// `file`: the shared object with the views.
    explicit SettingsWindowModule(std::filesystem::path file) : file_(std::move(file)) {}

    void setContent(SettingsContent* content) override;
    bool isVisible() const override { return window_ && window_->isVisible(); }
    void performClose() override;
    void open(const std::string& section) override;

private:
    std::filesystem::path file_;
    SettingsContent* content_ = nullptr;
    std::unique_ptr<SettingsWindowing> window_;
};

}  // namespace quillmar

/// What the shared object offers: a window that the caller owns.
extern "C" quillmar::SettingsWindowing* quillmarMakeSettingsWindow();
