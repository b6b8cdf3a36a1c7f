#pragma once
#include <filesystem>
#include <memory>

#include "platform/PageWindow.h"
#include "ui/ViewModule.h"

namespace quillmar {

/// A window with one page, which is loaded when it is first shown.
template <class Page>
class PageWindowModule final : public PageWindowing<Page> {
public:
    using Maker = PageWindowing<Page>*();

    /// `file`: the shared object with the views; `maker`: what it calls its function that makes this one.
    PageWindowModule(std::filesystem::path file, const char* maker) : file_(std::move(file)), maker_(maker) {}

    void setWishHandler(std::function<void(const std::string&)> handler) override {
        handler_ = std::move(handler);
        if (window_) window_->setWishHandler(handler_);
    }
    void show(const Page& page) override {
        if (!window_) {
            window_.reset(reinterpret_cast<Maker*>(viewFunction(file_, maker_))());
            window_->setWishHandler(handler_);
        }
        window_->show(page);
    }
    void update(const Page& page) override {
        if (window_) window_->update(page);
    }
    void close() override {
        if (window_) window_->close();
    }
    bool isVisible() const override { return window_ && window_->isVisible(); }

private:
    std::filesystem::path file_;
    const char* maker_;
    std::function<void(const std::string&)> handler_;
    std::unique_ptr<PageWindowing<Page>> window_;
};

}  // namespace quillmar

/// What the shared object offers: windows that the caller owns.
extern "C" {
quillmar::WelcomeWindowing* quillmarMakeWelcomeWindow();
quillmar::ChangelogWindowing* quillmarMakeChangelogWindow();
}
