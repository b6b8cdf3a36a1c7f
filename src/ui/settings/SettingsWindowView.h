#pragma once
#include <memory>
#include <optional>

#include "linux/glib/Ref.h"
#include "platform/SettingsWindow.h"
#include "ui/settings/PaneFoot.h"
#include "ui/settings/PaneView.h"

namespace quillmar {

/// The Settings window on a GTK desktop: what its content says, in the look of libhandy. It is made at the
/// first opening and kept until the content goes.
class SettingsWindowView final : public SettingsWindowing {
public:
    SettingsWindowView();
    SettingsWindowView(const SettingsWindowView&) = delete;
    SettingsWindowView& operator=(const SettingsWindowView&) = delete;
    ~SettingsWindowView() override;

    void setContent(SettingsContent* content) override;
    bool isVisible() const override;
    void performClose() override;
    void open(const std::string& section) override;

private:
    struct Widgets {
        GtkWindow* window;
        HdyLeaflet* leaflet;
        GtkListBox* sections;
        GtkMenuButton* menu;
        HdyHeaderBar* contentBar;
        GtkWidget* back;
        GtkSpinner* spinner;
        GtkLabel* banner;
        GtkScrolledWindow* scroller;
        GtkBox* pane;
        GtkBox* foot;
    };
    void make();
    void connect();
    void addActions();
    void refresh();
    void showSections(const SettingsFrame& frame);
    void showMenu(const SettingsFrame& frame);
    void showFold();
    bool keyPressed(const GdkEventKey& key);
    void goTo(std::size_t section);

    SettingsContent* content_ = nullptr;
    Ref<GtkBuilder> builder_;
    Widgets widgets_{};
    std::unique_ptr<PaneView> pane_;
    std::unique_ptr<PaneFoot> foot_;
    std::optional<SettingsFrame> shown_;
    bool isShowing_ = false;
    std::vector<Signal> signals_;
};

}  // namespace quillmar
