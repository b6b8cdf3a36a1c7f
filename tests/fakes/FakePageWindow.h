#pragma once
#include <optional>

#include "base/FileError.h"
#include "platform/PageWindow.h"

namespace quillmar {

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
