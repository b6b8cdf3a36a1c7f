#include "ui/settings/PageWindowFrame.h"

#include <malloc.h>

#include "platform/PageWindow.h"

namespace quillmar {
namespace {

bool closes(const GdkEventKey& key) {
    const auto modifiers = key.state & gtk_accelerator_get_default_mod_mask();
    return (modifiers == 0 && key.keyval == GDK_KEY_Escape) ||
           (modifiers == GDK_CONTROL_MASK && (key.keyval == GDK_KEY_w || key.keyval == GDK_KEY_q));
}

}  // namespace

PageWindowFrame::PageWindowFrame(const char* layout)
    : builder_([&] {
          prepareLook();
          return Ref<GtkBuilder>::adopt(gtk_builder_new_from_resource(layout));
      }()),
      window_(object<GtkWindow>("window")) {
    gtk_widget_add_events(GTK_WIDGET(window_), GDK_PROPERTY_CHANGE_MASK);
    signals_.push_back(Signal::connect<gboolean, GdkEvent*>(window_, "delete-event",
                                                            [this](GtkWindow*, GdkEvent*) -> gboolean {
                                                                tell(closeWish);
                                                                return TRUE;
                                                            }));
    signals_.push_back(Signal::connect<gboolean, GdkEventKey*>(
        window_, "key-press-event", [this](GtkWindow*, GdkEventKey* key) -> gboolean {
            if (!closes(*key)) return FALSE;
            tell(closeWish);
            return TRUE;
        }));
}

PageWindowFrame::~PageWindowFrame() {
    signals_.clear();
    gtk_widget_destroy(GTK_WIDGET(window_));
}

void PageWindowFrame::setTitle(const std::string& title) {
    gtk_window_set_title(window_, title.c_str());
    hdy_header_bar_set_title(object<HdyHeaderBar>("bar"), title.c_str());
}

void PageWindowFrame::present() {
    if (!isVisible()) gtk_window_set_position(window_, GTK_WIN_POS_CENTER);
    gtk_widget_show(GTK_WIDGET(window_));
    comeToFront(window_);
}

void PageWindowFrame::hide() {
    gtk_widget_hide(GTK_WIDGET(window_));
    // What the window drew with goes back to the system: the program is small while nobody looks at it.
    ::malloc_trim(0);
}

void PageWindowFrame::connect(GtkWidget* button, std::string wish) {
    signals_.push_back(Signal::connect<void>(GTK_BUTTON(button), "clicked",
                                             [this, wish = std::move(wish)](GtkButton*) { tell(wish); }));
}

void clear(GtkContainer* container) {
    gtk_container_foreach(container, [](GtkWidget* child, gpointer) { gtk_widget_destroy(child); }, nullptr);
}

}  // namespace quillmar
