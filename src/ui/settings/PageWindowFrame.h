#pragma once
#include <functional>
#include <string>
#include <vector>

#include "linux/glib/Signal.h"
#include "ui/settings/WindowLook.h"

namespace quillmar {

/// The window around a page: its layout, and how it comes, closes and goes. The layout names its window
/// "window".
class PageWindowFrame {
public:
    /// `layout`: a resource.
    explicit PageWindowFrame(const char* layout);
    PageWindowFrame(const PageWindowFrame&) = delete;
    PageWindowFrame& operator=(const PageWindowFrame&) = delete;
    ~PageWindowFrame();

    template <class T>
    T* object(const char* name) const {
        return quillmar::object<T>(builder_, name);
    }
    GtkWindow* window() const { return window_; }
    bool isVisible() const { return gtk_widget_get_visible(GTK_WIDGET(window_)); }
    void setTitle(const std::string& title);
    /// In the middle of the screen, where it is not shown yet, and in front.
    void present();
    void hide();

    /// The button says `wish` when it is pressed.
    void connect(GtkWidget* button, std::string wish);
    /// The user's wishes go there, never from within a call of this.
    void tell(const std::string& wish) const {
        if (handler_) handler_(wish);
    }
    void setWishHandler(std::function<void(const std::string&)> handler) { handler_ = std::move(handler); }

private:
    Ref<GtkBuilder> builder_;
    GtkWindow* window_;
    std::function<void(const std::string&)> handler_;
    std::vector<Signal> signals_;
};

/// Takes everything out of the container.
void clear(GtkContainer* container);

}  // namespace quillmar
