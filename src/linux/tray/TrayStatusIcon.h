#pragma once
#include <filesystem>
#include <memory>

#include "platform/StatusIcon.h"

namespace quillmar {

/// The icon in whatever panel this desktop has: over the session bus where a panel takes icons there, else in
/// a tray of the older kind. It moves from one to the other when panels come and go. Needs a `GtkSession`.
class TrayStatusIcon final : public StatusIconShowing {
public:
    /// `themes`: the folder of icon themes that the icon's pictures lie in.
    TrayStatusIcon(MainLoop& loop, std::filesystem::path themes);
    TrayStatusIcon(const TrayStatusIcon&) = delete;
    TrayStatusIcon& operator=(const TrayStatusIcon&) = delete;
    ~TrayStatusIcon() override;

    void show(StatusIconStyle style, StatusIconAnswering& answering) override;
    void setStyle(StatusIconStyle style) override;
    void contextMenuDidChange() override;
    void showMenu(StatusMenu menu) override;
    void hide() override;
    Duration doubleClickInterval() const override;

private:
    struct Shown;
    MainLoop& loop_;
    std::filesystem::path themes_;
    std::unique_ptr<Shown> shown_;
};

}  // namespace quillmar
