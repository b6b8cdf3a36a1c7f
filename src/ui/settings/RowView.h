#pragma once
#include <memory>
#include <string>
#include <vector>

#include "ui/settings/RowControl.h"

namespace quillmar {

/// One row of a pane: its texts, its control, small buttons beside that, and below both what is wrong with
/// the value. The widgets belong to the container that they were put into.
class RowView {
public:
    /// `wish` is told what the user does, never what `show` does.
    RowView(const SettingsRow& row, std::function<void(SettingsIntent)> wish);
    RowView(const RowView&) = delete;
    RowView& operator=(const RowView&) = delete;

    GtkWidget* widget() const { return row_; }
    /// Whether the widgets fit that row as well.
    bool fits(const SettingsRow& row) const { return shapeOf(row) == shape_; }
    /// Another state of a row that fits.
    void show(const SettingsRow& row);
    /// The row was clicked, or Return was pressed on it.
    void activate();

private:
    struct Side {
        std::string id;
        GtkWidget* button;
        Signal pressing;
    };
    static std::string shapeOf(const SettingsRow& row);
    GtkWidget* makeTitle();
    GtkWidget* makeEnd();
    void showSides(const SettingsRow& row);
    void showError(const std::string& error);
    void tell(SettingsIntent intent) const;

    std::string shape_;
    std::function<void(SettingsIntent)> wish_;
    GtkWidget* row_;
    std::unique_ptr<RowControl> control_;
    GtkWidget* texts_ = nullptr;
    GtkWidget* title_ = nullptr;
    GtkWidget* subtitle_ = nullptr;
    GtkWidget* end_ = nullptr;
    GtkWidget* error_ = nullptr;
    std::string shownError_;
    std::vector<Side> sides_;
    bool isShowing_ = false;  ///< what changes now is no wish
};

}  // namespace quillmar
