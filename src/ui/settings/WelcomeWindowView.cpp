#include "ui/settings/WelcomeWindowView.h"

#include <algorithm>

#include "ui/PageWindowModule.h"
#include "ui/settings/RowView.h"

namespace quillmar {
namespace {

constexpr int windowWidth = 760;
constexpr int windowHeight = 730;

GtkWidget* choiceRow(const WelcomePage::Choice& choice) {
    GtkWidget* row = hdy_action_row_new();
    hdy_preferences_row_set_use_underline(HDY_PREFERENCES_ROW(row), FALSE);
    hdy_preferences_row_set_title(HDY_PREFERENCES_ROW(row), choice.title.c_str());
    hdy_action_row_set_subtitle(HDY_ACTION_ROW(row), choice.text.c_str());
    hdy_action_row_set_subtitle_lines(HDY_ACTION_ROW(row), 0);
    hdy_action_row_add_prefix(HDY_ACTION_ROW(row),
                              gtk_image_new_from_icon_name(choice.iconName.c_str(), GTK_ICON_SIZE_BUTTON));
    gtk_container_add(GTK_CONTAINER(row),
                      gtk_image_new_from_icon_name("quillmar-next-symbolic", GTK_ICON_SIZE_BUTTON));
    gtk_list_box_row_set_activatable(GTK_LIST_BOX_ROW(row), TRUE);
    nameForAccess(row, choice.title);
    atk_object_set_description(gtk_widget_get_accessible(row), choice.text.c_str());
    gtk_widget_show_all(row);
    return row;
}

}  // namespace

WelcomeWindowView::WelcomeWindowView() {
    frame_.connect(frame_.object<GtkWidget>("not_now"), WelcomePage::notNowWish);
    frame_.connect(frame_.object<GtkWidget>("open_settings"), WelcomePage::openSettingsWish);
    choosing_ = Signal::connect<void, GtkListBoxRow*>(
        frame_.object<GtkListBox>("choices"), "row-activated", [this](GtkListBox*, GtkListBoxRow* row) {
            const auto chosen = static_cast<std::size_t>(gtk_list_box_row_get_index(row));
            // A copy: the wish may change the page.
            if (chosen < shown_.choices.size()) frame_.tell(std::string(shown_.choices[chosen].id));
        });
}

void WelcomeWindowView::show(const WelcomePage& page) {
    fill(page);
    const GdkRectangle room = roomOnScreen();
    gtk_widget_set_size_request(frame_.object<GtkWidget>("content"), std::min(windowWidth, room.width),
                                std::min(windowHeight, room.height));
    const bool wasVisible = frame_.isVisible();
    frame_.present();
    if (!wasVisible) gtk_widget_grab_focus(frame_.object<GtkWidget>("open_settings"));
}

void WelcomeWindowView::update(const WelcomePage& page) {
    if (frame_.isVisible()) fill(page);
}

void WelcomeWindowView::fill(const WelcomePage& page) {
    showTheme(page.theme);
    if (page == shown_) return;
    frame_.setTitle(page.title);
    GtkWidget* icon = frame_.object<GtkWidget>("icon");
    gtk_image_set_from_icon_name(GTK_IMAGE(icon), page.iconName.c_str(), GTK_ICON_SIZE_DIALOG);
    // A program that is not installed has none.
    gtk_widget_set_visible(
        icon, gtk_icon_theme_has_icon(gtk_icon_theme_get_default(), page.iconName.c_str()) != FALSE);
    const auto say = [this](const char* label, const std::string& text) {
        gtk_label_set_text(frame_.object<GtkLabel>(label), text.c_str());
    };
    say("badge", page.badge);
    say("heading", page.heading);
    say("text", page.text);
    say("question", page.question);
    say("footer", page.footer);
    gtk_button_set_label(frame_.object<GtkButton>("not_now"), page.notNow.c_str());
    gtk_button_set_label(frame_.object<GtkButton>("open_settings"), page.openSettings.c_str());

    GtkWidget* choices = frame_.object<GtkWidget>("choices");
    clear(GTK_CONTAINER(choices));
    for (const WelcomePage::Choice& choice : page.choices)
        gtk_container_add(GTK_CONTAINER(choices), choiceRow(choice));
    nameForAccess(choices, page.question);
    gtk_widget_set_visible(choices, !page.choices.empty());
    gtk_widget_set_visible(frame_.object<GtkWidget>("question"), !page.choices.empty());
    shown_ = page;
}

}  // namespace quillmar

__attribute__((visibility("default"))) quillmar::WelcomeWindowing* quillmarMakeWelcomeWindow() {
    return new quillmar::WelcomeWindowView;
}
