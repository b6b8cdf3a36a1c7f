#pragma once
#include "platform/PageWindow.h"
#include "ui/settings/PageWindowFrame.h"

namespace quillmar {

/// The welcome on a GTK desktop.
class WelcomeWindowView final : public WelcomeWindowing {
public:
    WelcomeWindowView();

    void setWishHandler(std::function<void(const std::string&)> handler) override {
        frame_.setWishHandler(std::move(handler));
    }
    void show(const WelcomePage& page) override;
    void update(const WelcomePage& page) override;
    void close() override { frame_.hide(); }
    bool isVisible() const override { return frame_.isVisible(); }

private:
    void fill(const WelcomePage& page);

    PageWindowFrame frame_{"/com/quillmar/settings/welcome.ui"};
    WelcomePage shown_;
    Signal choosing_;
};

}  // namespace quillmar
