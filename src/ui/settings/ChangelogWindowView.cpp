#include "ui/settings/ChangelogWindowView.h"

#include "ui/PageWindowModule.h"
#include "ui/settings/RowView.h"

namespace quillmar {
namespace {

constexpr int windowWidth = 560;
constexpr int windowHeight = 620;
constexpr int releaseSpacing = 12;
constexpr int itemSpacing = 6;

GtkWidget* label(const std::string& text, const char* styleClass) {
    GtkWidget* widget = gtk_label_new(text.c_str());
    gtk_label_set_xalign(GTK_LABEL(widget), 0);
    gtk_label_set_line_wrap(GTK_LABEL(widget), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(widget), PANGO_WRAP_WORD_CHAR);
    if (styleClass) gtk_style_context_add_class(gtk_widget_get_style_context(widget), styleClass);
    return widget;
}

GtkWidget* itemLine(const std::string& text) {
    GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, itemSpacing);
    GtkWidget* bullet = label("•", "dim-label");
    gtk_widget_set_valign(bullet, GTK_ALIGN_START);
    gtk_box_pack_start(GTK_BOX(line), bullet, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(line), label(text, nullptr), TRUE, TRUE, 0);
    return line;
}

GtkWidget* releaseBox(const ChangelogPage::Release& release) {
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, releaseSpacing);
    GtkWidget* head = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_container_add(GTK_CONTAINER(head), label(release.title, "quillmar-release"));
    gtk_container_add(GTK_CONTAINER(head), label(release.label, "dim-label"));
    gtk_container_add(GTK_CONTAINER(box), head);
    for (const ChangelogPage::Section& section : release.sections) {
        GtkWidget* lines = gtk_box_new(GTK_ORIENTATION_VERTICAL, itemSpacing);
        gtk_container_add(GTK_CONTAINER(lines), label(section.title, "heading"));
        for (const std::string& item : section.items) gtk_container_add(GTK_CONTAINER(lines), itemLine(item));
        gtk_container_add(GTK_CONTAINER(box), lines);
    }
    gtk_widget_show_all(box);
    return box;
}

}  // namespace

void ChangelogWindowView::show(const ChangelogPage& page) {
    fill(page);
    if (!frame_.isVisible()) {
        fitScreen(frame_.window(), windowWidth, windowHeight);
        gtk_adjustment_set_value(
            gtk_scrolled_window_get_vadjustment(frame_.object<GtkScrolledWindow>("scroller")), 0);
    }
    frame_.present();
    gtk_widget_grab_focus(frame_.object<GtkWidget>("scroller"));
}

void ChangelogWindowView::update(const ChangelogPage& page) {
    if (frame_.isVisible()) fill(page);
}

void ChangelogWindowView::fill(const ChangelogPage& page) {
    showTheme(page.theme);
    if (page == shown_) return;
    frame_.setTitle(page.title);
    gtk_button_set_label(frame_.object<GtkButton>("close"), page.close.c_str());
    GtkWidget* releases = frame_.object<GtkWidget>("releases");
    clear(GTK_CONTAINER(releases));
    for (const ChangelogPage::Release& release : page.releases)
        gtk_container_add(GTK_CONTAINER(releases), releaseBox(release));
    nameForAccess(frame_.object<GtkWidget>("scroller"), page.title);
    shown_ = page;
}

}  // namespace quillmar

__attribute__((visibility("default"))) quillmar::ChangelogWindowing* quillmarMakeChangelogWindow() {
    return new quillmar::ChangelogWindowView;
}
