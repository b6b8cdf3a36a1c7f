#pragma once
#include <optional>

#include "base/FileError.h"
#include "platform/PageWindow.h"
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

template <class Page>
class FakePageWindow final : public PageWindowing<Page> {
public:
    std::optional<Page> page;  ///< what is shown
    std::function<void(const std::string&)> wish;
    bool isMissing = false;  ///< there is no such window to be had
    int shown = 0;
    void setWishHandler(std::function<void(const std::string&)> handler) override {
        wish = std::move(handler);
    }
    void show(const Page& wanted) override {
        if (isMissing)
            throw FileError("quillmar-settings.so",
                            std::make_error_code(std::errc::no_such_file_or_directory));
        page = wanted;
        ++shown;
    }
    void update(const Page& wanted) override {
        if (page) page = wanted;
    }
    void close() override { page.reset(); }
    bool isVisible() const override { return page.has_value(); }
};

}  // namespace quillmar
