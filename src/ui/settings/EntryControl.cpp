#include "ui/settings/RowControl.h"

namespace quillmar {
namespace {

class EntryControl : public RowControl {
public:
    explicit EntryControl(Wish wish)
        : entry_(gtk_entry_new()),
          typing_(Signal::connect<void>(GTK_EDITABLE(entry_), "changed",
                                        [wish = std::move(wish)](GtkEditable* entry) {
                                            wish(std::string(gtk_entry_get_text(GTK_ENTRY(entry))));
                                        })) {
        gtk_widget_set_hexpand(entry_, TRUE);
    }
    GtkWidget* widget() const override { return entry_; }
    GtkWidget* field() const final { return entry_; }
    void show(const SettingsRow& row) override {
        setEntryText(GTK_ENTRY(entry_), std::get<SettingsRow::Entry>(row.control).text);
    }

private:
    GtkWidget* entry_;
    Signal typing_;
};

/// Dots instead of letters, and beside them what shows the letters: a button, because the icons in an entry
/// are out of reach of the keyboard.
class SecretControl final : public EntryControl {
public:
    explicit SecretControl(Wish wish)
        : EntryControl(std::move(wish)),
          box_(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0)),
          reveal_(gtk_toggle_button_new()) {
        gtk_entry_set_visibility(GTK_ENTRY(field()), FALSE);
        gtk_entry_set_input_purpose(GTK_ENTRY(field()), GTK_INPUT_PURPOSE_PASSWORD);
        gtk_container_add(GTK_CONTAINER(reveal_),
                          gtk_image_new_from_icon_name("quillmar-reveal-symbolic", GTK_ICON_SIZE_MENU));
        gtk_container_add(GTK_CONTAINER(box_), field());
        gtk_container_add(GTK_CONTAINER(box_), reveal_);
        setStyleClass(box_, "linked");
        gtk_widget_show_all(box_);
        revealing_ =
            Signal::connect<void>(GTK_TOGGLE_BUTTON(reveal_), "toggled", [this](GtkToggleButton* button) {
                gtk_entry_set_visibility(GTK_ENTRY(field()), gtk_toggle_button_get_active(button));
            });
    }
    GtkWidget* widget() const override { return box_; }
    void show(const SettingsRow& row) override {
        EntryControl::show(row);
        const std::string& reveal = std::get<SettingsRow::Entry>(row.control).reveal;
        gtk_widget_set_tooltip_text(reveal_, reveal.c_str());
        nameForAccess(reveal_, reveal + ", " + row.title);
    }

private:
    GtkWidget* box_;
    GtkWidget* reveal_;
    Signal revealing_;
};

}  // namespace

void setEntryText(GtkEntry* entry, const std::string& text) {
    if (text != gtk_entry_get_text(entry)) gtk_entry_set_text(entry, text.c_str());
}

std::unique_ptr<RowControl> makeEntryControl(const SettingsRow::Entry& entry, RowControl::Wish wish) {
    if (entry.isSecret) return std::make_unique<SecretControl>(std::move(wish));
    return std::make_unique<EntryControl>(std::move(wish));
}

}  // namespace quillmar
