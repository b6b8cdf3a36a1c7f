#include <cairo-gobject.h>

#include <algorithm>
#include <cmath>

#include "linux/glib/Ref.h"
#include "ui/settings/RowControl.h"

namespace quillmar {
namespace {

constexpr int swatchWidth = 28;
constexpr int swatchHeight = 16;
constexpr int paletteColumns = 4;
constexpr int hexLength = 7;

bool readColor(const std::string& text, GdkRGBA& color) {
    return text.size() == hexLength && text.front() == '#' && gdk_rgba_parse(&color, text.c_str()) != FALSE;
}

std::string hexOf(const GdkRGBA& color) {
    const auto part = [](double share) { return static_cast<int>(std::lround(share * 255)); };
    char* text = g_strdup_printf("#%02X%02X%02X", part(color.red), part(color.green), part(color.blue));
    std::string hex = text;
    g_free(text);
    return hex;
}

/// To be typed, or picked from the toolkit's own dialog.
class AnyColorControl final : public RowControl {
public:
    explicit AnyColorControl(Wish wish)
        : box_(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6)),
          button_(gtk_color_button_new()),
          entry_(gtk_entry_new()) {
        gtk_color_chooser_set_use_alpha(GTK_COLOR_CHOOSER(button_), FALSE);
        gtk_entry_set_width_chars(GTK_ENTRY(entry_), hexLength + 2);
        gtk_container_add(GTK_CONTAINER(box_), button_);
        gtk_container_add(GTK_CONTAINER(box_), entry_);
        gtk_widget_show_all(box_);
        typing_ = Signal::connect<void>(GTK_EDITABLE(entry_), "changed",
                                        [wish = std::move(wish)](GtkEditable* entry) {
                                            wish(std::string(gtk_entry_get_text(GTK_ENTRY(entry))));
                                        });
        picking_ =
            Signal::connect<void>(GTK_COLOR_BUTTON(button_), "color-set", [this](GtkColorButton* button) {
                GdkRGBA color{};
                gtk_color_chooser_get_rgba(GTK_COLOR_CHOOSER(button), &color);
                setEntryText(GTK_ENTRY(entry_), hexOf(color));
            });
    }
    GtkWidget* widget() const override { return box_; }
    GtkWidget* field() const override { return entry_; }
    void show(const SettingsRow& row) override {
        const auto& shown = std::get<SettingsRow::Color>(row.control);
        gtk_entry_set_placeholder_text(GTK_ENTRY(entry_), shown.none.c_str());
        setEntryText(GTK_ENTRY(entry_), shown.text);
        // Half a color is no reason for the button to change.
        if (GdkRGBA color{}; readColor(shown.text, color))
            gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(button_), &color);
        nameForAccess(button_, row.title);
        gtk_color_button_set_title(GTK_COLOR_BUTTON(button_), row.title.c_str());
    }

private:
    GtkWidget* box_;
    GtkWidget* button_;
    GtkWidget* entry_;
    Signal typing_;
    Signal picking_;
};

/// One of the palette's colors, each as a swatch with its number in a list.
class PaletteControl final : public RowControl {
    enum Column { nameColumn, swatchColumn, columnCount };

public:
    explicit PaletteControl(Wish wish)
        : list_(Ref<GtkListStore>::adopt(
              gtk_list_store_new(columnCount, G_TYPE_STRING, CAIRO_GOBJECT_TYPE_SURFACE))),
          box_(gtk_combo_box_new()),
          scrolling_(passScrolling(box_)) {
        addCell(gtk_cell_renderer_pixbuf_new(), "surface", swatchColumn);
        addCell(gtk_cell_renderer_text_new(), "text", nameColumn);
        gtk_combo_box_set_wrap_width(GTK_COMBO_BOX(box_), paletteColumns);
        choosing_ = Signal::connect<void>(GTK_COMBO_BOX(box_), "changed",
                                          [this, wish = std::move(wish)](GtkComboBox* box) {
                                              const int chosen = gtk_combo_box_get_active(box);
                                              if (chosen >= 0) wish(texts_[static_cast<std::size_t>(chosen)]);
                                          });
    }
    GtkWidget* widget() const override { return box_; }
    void show(const SettingsRow& row) override {
        const auto& shown = std::get<SettingsRow::Color>(row.control);
        std::vector<std::string> texts;
        if (!shown.none.empty()) texts.emplace_back();
        texts.insert(texts.end(), shown.palette.begin(), shown.palette.end());
        if (texts != texts_ || shown.none != none_) fill(std::move(texts), shown.none);
        const auto chosen = std::ranges::find_if(texts_, [&](const std::string& text) {
            return g_ascii_strcasecmp(text.c_str(), shown.text.c_str()) == 0;
        });
        gtk_combo_box_set_active(GTK_COMBO_BOX(box_),
                                 chosen == texts_.end() ? -1 : static_cast<int>(chosen - texts_.begin()));
    }

private:
    void addCell(GtkCellRenderer* cell, const char* property, Column column) {
        gtk_cell_renderer_set_padding(cell, 3, 0);
        gtk_cell_layout_pack_start(GTK_CELL_LAYOUT(box_), cell, FALSE);
        gtk_cell_layout_add_attribute(GTK_CELL_LAYOUT(box_), cell, property, column);
    }
    void fill(std::vector<std::string> texts, const std::string& none) {
        // Without the box, which would make its menu anew with every color.
        gtk_combo_box_set_model(GTK_COMBO_BOX(box_), nullptr);
        gtk_list_store_clear(list_.get());
        texts_ = std::move(texts);
        none_ = none;
        for (const std::string& text : texts_) {
            const int scale = gtk_widget_get_scale_factor(box_);
            cairo_surface_t* swatch =
                cairo_image_surface_create(CAIRO_FORMAT_ARGB32, swatchWidth * scale, swatchHeight * scale);
            cairo_surface_set_device_scale(swatch, scale, scale);
            if (GdkRGBA color{}; readColor(text, color)) {
                cairo_t* cr = cairo_create(swatch);
                gdk_cairo_set_source_rgba(cr, &color);
                cairo_paint(cr);
                cairo_destroy(cr);
            }
            gtk_list_store_insert_with_values(list_.get(), nullptr, -1, nameColumn,
                                              text.empty() ? none_.c_str() : text.c_str(), swatchColumn,
                                              swatch, -1);
            cairo_surface_destroy(swatch);
        }
        gtk_combo_box_set_model(GTK_COMBO_BOX(box_), GTK_TREE_MODEL(list_.get()));
    }

    Ref<GtkListStore> list_;
    GtkWidget* box_;
    Signal scrolling_;
    std::vector<std::string> texts_;
    std::string none_;
    Signal choosing_;
};

}  // namespace

std::unique_ptr<RowControl> makeColorControl(const SettingsRow::Color& color, RowControl::Wish wish) {
    if (!color.palette.empty()) return std::make_unique<PaletteControl>(std::move(wish));
    return std::make_unique<AnyColorControl>(std::move(wish));
}

}  // namespace quillmar
