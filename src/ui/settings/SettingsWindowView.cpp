#include "ui/settings/SettingsWindowView.h"

#include <malloc.h>

#include "ui/SettingsWindowModule.h"
#include "ui/settings/WindowLook.h"

namespace quillmar {
namespace {

constexpr int windowWidth = 900;
constexpr int windowHeight = 800;
constexpr const char* sidebarPage = "sidebar";
constexpr const char* contentPage = "content";

GtkWidget* sectionRow(const SettingsFrame::Section& section) {
    GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
    GtkWidget* icon = gtk_image_new_from_icon_name(section.iconName.c_str(), GTK_ICON_SIZE_MENU);
    GtkWidget* label = gtk_label_new(section.label.c_str());
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_box_pack_start(GTK_BOX(line), icon, FALSE, FALSE, 6);
    gtk_box_pack_start(GTK_BOX(line), label, TRUE, TRUE, 0);
    GtkWidget* row = gtk_list_box_row_new();
    gtk_container_add(GTK_CONTAINER(row), line);
    nameForAccess(row, section.label);
    gtk_widget_show_all(row);
    return row;
}

}  // namespace

SettingsWindowView::SettingsWindowView() { prepareLook(); }

SettingsWindowView::~SettingsWindowView() { setContent(nullptr); }

void SettingsWindowView::setContent(SettingsContent* content) {
    if (content_ && !content) content_->setChangeHandler({});
    content_ = content;
    if (content_) {
        content_->setChangeHandler([this] {
            if (isVisible()) refresh();
        });
    } else if (widgets_.window) {
        signals_.clear();
        pane_.reset();
        foot_.reset();
        gtk_widget_destroy(GTK_WIDGET(widgets_.window));
        widgets_ = {};
        shown_.reset();
        builder_ = {};
    }
}

bool SettingsWindowView::isVisible() const {
    return widgets_.window && gtk_widget_get_visible(GTK_WIDGET(widgets_.window));
}

void SettingsWindowView::performClose() {
    if (!content_) return;
    content_->requestClose([this] {
        if (widgets_.window) gtk_widget_hide(GTK_WIDGET(widgets_.window));
        // What the window drew with goes back to the system: the program is small while nobody looks at it.
        ::malloc_trim(0);
    });
}

void SettingsWindowView::open(const std::string& section) {
    if (!content_) return;
    content_->navigate(section);
    if (!widgets_.window) {
        // Before there are widgets, which would have to be styled twice.
        showTheme(content_->frame().theme);
        make();
    }
    const bool wasVisible = isVisible();
    refresh();
    if (!wasVisible) {
        hdy_leaflet_set_visible_child_name(widgets_.leaflet, contentPage);
        fitScreen(widgets_.window, windowWidth, windowHeight);
        gtk_window_set_position(widgets_.window, GTK_WIN_POS_CENTER);
        gtk_widget_show(GTK_WIDGET(widgets_.window));
    }
    comeToFront(widgets_.window);
}

void SettingsWindowView::make() {
    builder_ = Ref<GtkBuilder>::adopt(gtk_builder_new_from_resource("/com/quillmar/settings/window.ui"));
    widgets_ = {.window = object<GtkWindow>(builder_, "window"),
                .leaflet = object<HdyLeaflet>(builder_, "leaflet"),
                .sections = object<GtkListBox>(builder_, "sections"),
                .menu = object<GtkMenuButton>(builder_, "menu"),
                .contentBar = object<HdyHeaderBar>(builder_, "content_bar"),
                .back = object<GtkWidget>(builder_, "back"),
                .spinner = object<GtkSpinner>(builder_, "spinner"),
                .banner = object<GtkLabel>(builder_, "banner"),
                .scroller = object<GtkScrolledWindow>(builder_, "scroller"),
                .pane = object<GtkBox>(builder_, "pane"),
                .foot = object<GtkBox>(builder_, "foot")};
    gtk_widget_add_events(GTK_WIDGET(widgets_.window), GDK_PROPERTY_CHANGE_MASK);
    gtk_widget_realize(GTK_WIDGET(widgets_.window));
    const auto act = [this](SettingsIntent intent) { content_->act(std::move(intent)); };
    pane_ = std::make_unique<PaneView>(
        widgets_.pane, PaneView::Wishes{act, [this](const std::string& group, bool isExpanded) {
                                            content_->setExpanded(group, isExpanded);
                                        }});
    foot_ = std::make_unique<PaneFoot>(widgets_.foot, act);
    addActions();
    connect();
}

void SettingsWindowView::connect() {
    signals_.push_back(
        Signal::connect<gboolean, GdkEvent*>(widgets_.window, "delete-event", [this](GtkWindow*, GdkEvent*) {
            performClose();
            return TRUE;
        }));
    signals_.push_back(Signal::connect<gboolean, GdkEventKey*>(
        widgets_.window, "key-press-event",
        [this](GtkWindow*, GdkEventKey* key) -> gboolean { return keyPressed(*key); }));
    signals_.push_back(Signal::connect<void, GtkListBoxRow*>(
        widgets_.sections, "row-selected", [this](GtkListBox*, GtkListBoxRow* row) {
            if (!isShowing_ && row) goTo(static_cast<std::size_t>(gtk_list_box_row_get_index(row)));
        }));
    signals_.push_back(makeOneTabStop(GTK_CONTAINER(widgets_.sections), [this] {
        return GTK_WIDGET(gtk_list_box_get_selected_row(widgets_.sections));
    }));
    // In a narrow window the section that is shown already is chosen to come back to it.
    signals_.push_back(Signal::connect<void, GtkListBoxRow*>(
        widgets_.sections, "row-activated", [this](GtkListBox*, GtkListBoxRow*) {
            hdy_leaflet_set_visible_child_name(widgets_.leaflet, contentPage);
        }));
    signals_.push_back(Signal::connect<void>(GTK_BUTTON(widgets_.back), "clicked", [this](GtkButton*) {
        hdy_leaflet_set_visible_child_name(widgets_.leaflet, sidebarPage);
    }));
    signals_.push_back(Signal::connect<void, GParamSpec*>(widgets_.leaflet, "notify::folded",
                                                          [this](HdyLeaflet*, GParamSpec*) { showFold(); }));
    showFold();
}

void SettingsWindowView::addActions() {
    GSimpleActionGroup* group = g_simple_action_group_new();
    const auto add = [&](const char* name, std::function<void()> action) {
        GSimpleAction* entry = g_simple_action_new(name, nullptr);
        signals_.push_back(Signal::connect<void, GVariant*>(
            entry, "activate", [action = std::move(action)](GSimpleAction*, GVariant*) { action(); }));
        g_action_map_add_action(G_ACTION_MAP(group), G_ACTION(entry));
        g_object_unref(entry);
    };
    add("about", [this] { content_->navigate("about"); });
    add("quit", [this] { content_->quit(); });
    gtk_widget_insert_action_group(GTK_WIDGET(widgets_.window), "settings", G_ACTION_GROUP(group));
    g_object_unref(group);
}

void SettingsWindowView::refresh() {
    isShowing_ = true;
    SettingsFrame frame = content_->frame();
    const SettingsPane pane = content_->pane();
    showTheme(frame.theme);
    gtk_window_set_title(widgets_.window, frame.title.c_str());
    if (!shown_ || shown_->sections != frame.sections || shown_->current != frame.current)
        showSections(frame);
    if (!shown_ || shown_->quit != frame.quit) showMenu(frame);
    gtk_label_set_text(widgets_.banner, frame.banner.c_str());
    gtk_widget_set_visible(GTK_WIDGET(widgets_.banner), !frame.banner.empty());
    nameForAccess(GTK_WIDGET(widgets_.sections), frame.title);
    nameForAccess(widgets_.back, frame.back);
    nameForAccess(GTK_WIDGET(widgets_.spinner), frame.title);
    gtk_widget_set_visible(GTK_WIDGET(widgets_.spinner), pane.isBusy);
    // One that spins unseen would wake the program up for every frame.
    g_object_set(widgets_.spinner, "active", pane.isBusy, nullptr);
    pane_->show(pane);
    foot_->show(pane.actions, pane.progress);
    if (!shown_ || shown_->current != frame.current) {
        gtk_adjustment_set_value(gtk_scrolled_window_get_vadjustment(widgets_.scroller), 0);
        if (shown_) hdy_leaflet_set_visible_child_name(widgets_.leaflet, contentPage);
    }
    shown_ = std::move(frame);
    isShowing_ = false;
}

void SettingsWindowView::showSections(const SettingsFrame& frame) {
    const bool isOther = !shown_ || shown_->sections != frame.sections;
    const bool hadFocus = gtk_container_get_focus_child(GTK_CONTAINER(widgets_.sections)) != nullptr;
    if (isOther) {
        gtk_container_foreach(
            GTK_CONTAINER(widgets_.sections), [](GtkWidget* row, gpointer) { gtk_widget_destroy(row); },
            nullptr);
    }
    for (std::size_t i = 0; i < frame.sections.size(); ++i) {
        if (isOther) gtk_container_add(GTK_CONTAINER(widgets_.sections), sectionRow(frame.sections[i]));
        if (frame.sections[i].id != frame.current) continue;
        GtkListBoxRow* row = gtk_list_box_get_row_at_index(widgets_.sections, static_cast<int>(i));
        gtk_list_box_select_row(widgets_.sections, row);
        if (isOther && hadFocus) gtk_widget_grab_focus(GTK_WIDGET(row));
        hdy_header_bar_set_title(widgets_.contentBar, frame.sections[i].label.c_str());
    }
    hdy_header_bar_set_title(object<HdyHeaderBar>(builder_, "sidebar_bar"), frame.title.c_str());
}

void SettingsWindowView::showMenu(const SettingsFrame& frame) {
    const auto menu = Ref<GMenu>::adopt(g_menu_new());
    g_menu_append(menu.get(), frame.about.c_str(), "settings.about");
    g_menu_append(menu.get(), frame.quit.c_str(), "settings.quit");
    gtk_menu_button_set_menu_model(widgets_.menu, G_MENU_MODEL(menu.get()));
    nameForAccess(GTK_WIDGET(widgets_.menu), frame.menu);
}

void SettingsWindowView::showFold() {
    gtk_widget_set_visible(widgets_.back, hdy_leaflet_get_folded(widgets_.leaflet));
}

void SettingsWindowView::goTo(std::size_t section) {
    if (shown_ && section < shown_->sections.size()) content_->navigate(shown_->sections[section].id);
}

bool SettingsWindowView::keyPressed(const GdkEventKey& key) {
    const auto modifiers = key.state & gtk_accelerator_get_default_mod_mask();
    if (modifiers == GDK_CONTROL_MASK) {
        if (key.keyval == GDK_KEY_w || key.keyval == GDK_KEY_q) {
            performClose();
            return true;
        }
        if (key.keyval == GDK_KEY_Return || key.keyval == GDK_KEY_KP_Enter) {
            foot_->pressSuggested();
            return true;
        }
        if (key.keyval == GDK_KEY_comma) {
            goTo(0);
            return true;
        }
        if (key.keyval >= GDK_KEY_1 && key.keyval <= GDK_KEY_9) {
            goTo(key.keyval - GDK_KEY_1);
            return true;
        }
    }
    if (modifiers == GDK_MOD1_MASK && key.keyval == GDK_KEY_Left &&
        hdy_leaflet_get_folded(widgets_.leaflet)) {
        hdy_leaflet_set_visible_child_name(widgets_.leaflet, sidebarPage);
        return true;
    }
    if (modifiers != 0) return false;
    if (key.keyval == GDK_KEY_F10) {
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets_.menu), TRUE);
        return true;
    }
    // An open menu is closed first.
    if (key.keyval != GDK_KEY_Escape || gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(widgets_.menu)))
        return false;
    performClose();
    return true;
}

}  // namespace quillmar

__attribute__((visibility("default"))) quillmar::SettingsWindowing* quillmarMakeSettingsWindow() {
    return new quillmar::SettingsWindowView;
}
