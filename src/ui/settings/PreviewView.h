#pragma once
#include "platform/SettingsDisplays.h"
#include "ui/settings/Widgets.h"

namespace quillmar {

/// What a display would show, in the display's proportions.
class PreviewView {
public:
    PreviewView();
    PreviewView(const PreviewView&) = delete;
    PreviewView& operator=(const PreviewView&) = delete;

    GtkWidget* widget() const { return box_; }
    void show(const SettingsPreview& preview);

private:
    void draw(cairo_t* cr) const;

    SettingsPreview shown_;
    GtkWidget* box_;
    GtkWidget* title_;
    GtkWidget* picture_;
    GtkWidget* text_;
    GtkWidget* spinner_;
    Signal drawing_;
};

}  // namespace quillmar
