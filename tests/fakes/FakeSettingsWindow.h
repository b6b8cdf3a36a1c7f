#pragma once
#include <string>
#include <vector>

#include "platform/SettingsWindow.h"

namespace quillmar {

class FakeSettingsWindow final : public SettingsWindowing {
public:
    bool visible = false;
    std::vector<std::string> opened;
    SettingsContent* content = nullptr;
    void setContent(SettingsContent* shown) override { content = shown; }
    bool isVisible() const override { return visible; }
    void performClose() override { visible = false; }
    void open(const std::string& section) override {
        visible = true;
        opened.push_back(section);
    }
};

}  // namespace quillmar
