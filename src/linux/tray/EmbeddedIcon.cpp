#include "linux/tray/EmbeddedIcon.h"

#include <algorithm>

// GTK advises against trays of this kind; where there is no other, it is the one that a person has.
G_GNUC_BEGIN_IGNORE_DEPRECATIONS

namespace quillmar {
namespace {

using Button = StatusIconClick::Button;
constexpr int smallest = 16;

std::optional<Button> buttonOf(guint number) {
    if (number == GDK_BUTTON_PRIMARY) return Button::primary;
    if (number == GDK_BUTTON_MIDDLE) return Button::middle;
    if (number == GDK_BUTTON_SECONDARY) return Button::secondary;
    return std::nullopt;
}

}  // namespace

EmbeddedIcon::EmbeddedIcon(const PanelIconFiles& files, StatusIconStyle style, ClickHandler clicked)
    : files_(files),
      style_(style),
      clicked_(std::move(clicked)),
      icon_(Ref<GtkStatusIcon>::adopt(gtk_status_icon_new())) {
    gtk_status_icon_set_title(icon_.get(), "Quillmar");
    gtk_status_icon_set_name(icon_.get(), "quillmar");
    gtk_status_icon_set_tooltip_text(icon_.get(), "Quillmar");
    resized_ = Signal::connect<gboolean, int>(icon_.get(), "size-changed", [this](GtkStatusIcon*, int size) {
        draw(size);
        return TRUE;
    });
    // The toolkit activates at the press; here the mouse counts when it is let go.
    pressed_ = Signal::connect<gboolean, GdkEventButton*>(
        icon_.get(), "button-press-event", [](GtkStatusIcon*, GdkEventButton*) { return TRUE; });
    released_ = Signal::connect<gboolean, GdkEventButton*>(icon_.get(), "button-release-event",
                                                           [this](GtkStatusIcon*, GdkEventButton* event) {
                                                               released(*event);
                                                               return TRUE;
                                                           });
    // What is left of these comes from the keyboard.
    activated_ = Signal::connect<void>(icon_.get(), "activate", [this](GtkStatusIcon*) {
        clicked_({.button = Button::primary}, std::nullopt);
    });
    menuAskedFor_ = Signal::connect<void, guint, guint>(
        icon_.get(), "popup-menu",
        [this](GtkStatusIcon*, guint, guint) { clicked_({.button = Button::secondary}, std::nullopt); });
    draw(gtk_status_icon_get_size(icon_.get()));
}

void EmbeddedIcon::setStyle(StatusIconStyle style) {
    style_ = style;
    draw(gtk_status_icon_get_size(icon_.get()));
}

bool EmbeddedIcon::isInTray() const { return gtk_status_icon_is_embedded(icon_.get()); }

/// Before a tray has taken it, it has no size; a tray leaves out what shows nothing.
void EmbeddedIcon::draw(int size) {
    if (const auto picture = files_.pixels(style_, std::max(size, smallest))) {
        gtk_status_icon_set_from_pixbuf(icon_.get(), picture.get());
    } else {
        gtk_status_icon_set_from_icon_name(icon_.get(), "preferences-desktop-wallpaper");
    }
}

void EmbeddedIcon::released(const GdkEventButton& event) {
    const auto button = buttonOf(event.button);
    if (!button) return;
    clicked_({.button = *button, .withControl = (event.state & GDK_CONTROL_MASK) != 0},
             PanelPlace{static_cast<int>(event.x_root), static_cast<int>(event.y_root)});
}

}  // namespace quillmar

G_GNUC_END_IGNORE_DEPRECATIONS
