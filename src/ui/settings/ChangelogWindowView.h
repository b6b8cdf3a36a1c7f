#pragma once
#include "platform/PageWindow.h"
#include "ui/settings/PageWindowFrame.h"

namespace quillmar {

/// The changelog on a GTK desktop.
class ChangelogWindowView final : public ChangelogWindowing {
public:
    ChangelogWindowView() { frame_.connect(frame_.object<GtkWidget>("close"), closeWish); }

    void setWishHandler(std::function<void(const std::string&)> handler) override {
        frame_.setWishHandler(std::move(handler));
    }
    void show(const ChangelogPage& page) override;
    void update(const ChangelogPage& page) override;
    void close() override { frame_.hide(); }
    bool isVisible() const override { return frame_.isVisible(); }

private:
    void fill(const ChangelogPage& page);

    PageWindowFrame frame_{"/com/quillmar/settings/changelog.ui"};
    ChangelogPage shown_;
};

}  // namespace quillmar
