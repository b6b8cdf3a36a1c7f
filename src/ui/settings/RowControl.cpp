#include "ui/settings/RowControl.h"

namespace quillmar {
namespace {

class ToggleControl final : public RowControl {
public:
    explicit ToggleControl(Wish wish)
        : toggle_(gtk_switch_new()),
          signal_(
              Signal::connect<void, GParamSpec*>(GTK_SWITCH(toggle_), "notify::active",
                                                 [wish = std::move(wish)](GtkSwitch* toggle, GParamSpec*) {
                                                     wish(gtk_switch_get_active(toggle) != FALSE);
                                                 })) {}
    GtkWidget* widget() const override { return toggle_; }
    bool isActivatedByRow() const override { return true; }
    void show(const SettingsRow& row) override {
        gtk_switch_set_active(GTK_SWITCH(toggle_), std::get<SettingsRow::Toggle>(row.control).isOn);
    }

private:
    GtkWidget* toggle_;
    Signal signal_;
};

class ChoiceControl final : public RowControl {
public:
    explicit ChoiceControl(Wish wish) : box_(gtk_combo_box_text_new()), scrolling_(passScrolling(box_)) {
        // In a narrow window its text gives way before the row's own does.
        GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(box_));
        for (GList* at = cells; at; at = at->next)
            g_object_set(at->data, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
        g_list_free(cells);
        signal_ =
            Signal::connect<void>(GTK_COMBO_BOX(box_), "changed", [wish = std::move(wish)](GtkComboBox* box) {
                const int chosen = gtk_combo_box_get_active(box);
                if (chosen >= 0) wish(static_cast<std::size_t>(chosen));
            });
    }
    GtkWidget* widget() const override { return box_; }
    void show(const SettingsRow& row) override {
        const auto& choice = std::get<SettingsRow::Choice>(row.control);
        if (choices_ != choice.choices) {
            choices_ = choice.choices;
            gtk_combo_box_text_remove_all(GTK_COMBO_BOX_TEXT(box_));
            for (const std::string& text : choices_)
                gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(box_), text.c_str());
        }
        gtk_combo_box_set_active(GTK_COMBO_BOX(box_), static_cast<int>(choice.chosen));
    }

private:
    GtkWidget* box_;
    std::vector<std::string> choices_;
    Signal scrolling_;
    Signal signal_;
};

class ActionControl final : public RowControl {
public:
    ActionControl(bool isDestructive, Wish wish)
        : button_(gtk_button_new()),
          signal_(Signal::connect<void>(GTK_BUTTON(button_), "clicked",
                                        [wish = std::move(wish)](GtkButton*) { wish({}); })) {
        setStyleClass(button_, "destructive-action", isDestructive);
    }
    GtkWidget* widget() const override { return button_; }
    void show(const SettingsRow& row) override {
        gtk_button_set_label(GTK_BUTTON(button_), std::get<SettingsRow::Action>(row.control).label.c_str());
    }

private:
    GtkWidget* button_;
    Signal signal_;
};

struct Maker {
    RowControl::Wish wish;

    std::unique_ptr<RowControl> operator()(const SettingsRow::Text&) { return nullptr; }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Toggle&) {
        return std::make_unique<ToggleControl>(std::move(wish));
    }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Choice&) {
        return std::make_unique<ChoiceControl>(std::move(wish));
    }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Action& action) {
        return std::make_unique<ActionControl>(action.isDestructive, std::move(wish));
    }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Entry& entry) {
        return makeEntryControl(entry, std::move(wish));
    }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Number&) {
        return makeNumberControl(std::move(wish));
    }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Duration&) {
        return makeDurationControl(std::move(wish));
    }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Color& color) {
        return makeColorControl(color, std::move(wish));
    }
    std::unique_ptr<RowControl> operator()(const SettingsRow::Gallery&) {
        return makeGalleryControl(std::move(wish));
    }
};

}  // namespace

std::unique_ptr<RowControl> makeRowControl(const SettingsRow& row, RowControl::Wish wish) {
    return std::visit(Maker{std::move(wish)}, row.control);
}

}  // namespace quillmar
