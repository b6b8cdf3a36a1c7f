#include "ui/settings/PaneView.h"

namespace quillmar {
namespace {

constexpr int heroIconSize = 96;

/// Panes of one shape have the same widgets.
std::string shapeOf(const SettingsPane& pane) {
    std::string shape = pane.hero ? "hero\n" : "\n";
    for (const SettingsGroup& group : pane.groups) {
        shape += group.id + (group.isExpanded ? "+\n" : "\n");
        for (const SettingsRow& row : group.rows)
            shape += " " + row.id + ":" + std::to_string(row.control.index()) + "\n";
    }
    return shape;
}

GtkWidget* heroLabel(const char* styleClass) {
    GtkWidget* label = gtk_label_new(nullptr);
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    gtk_widget_set_can_focus(label, FALSE);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_style_context_add_class(gtk_widget_get_style_context(label), styleClass);
    return label;
}

}  // namespace

void PaneView::show(const SettingsPane& pane) {
    isShowing_ = true;
    if (std::string shape = shapeOf(pane); shape != shape_) {
        shape_ = std::move(shape);
        rebuild(pane);
    }
    if (pane.hero) fillHero(*pane.hero);
    for (std::size_t i = 0; i < groups_.size(); ++i) fill(*groups_[i], pane.groups[i]);
    isShowing_ = false;
}

void PaneView::rebuild(const SettingsPane& pane) {
    std::string focused;
    for (const auto& group : groups_) {
        for (const auto& row : group->rows) {
            if (row->hasFocus()) focused = row->id();
        }
    }
    groups_.clear();
    gtk_container_foreach(
        GTK_CONTAINER(box_), [](GtkWidget* child, gpointer) { gtk_widget_destroy(child); }, nullptr);
    if (pane.hero) addHero();
    for (const SettingsGroup& group : pane.groups) groups_.push_back(makeGroup(group));
    for (const auto& group : groups_) {
        for (const auto& row : group->rows) {
            if (row->id() == focused) row->takeFocus();
        }
    }
}

void PaneView::addHero() {
    heroImage_ = gtk_image_new();
    gtk_image_set_pixel_size(GTK_IMAGE(heroImage_), heroIconSize);
    heroTitle_ = heroLabel("quillmar-hero-title");
    heroText_ = heroLabel("dim-label");
    GtkWidget* hero = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    for (GtkWidget* part : {heroImage_, heroTitle_, heroText_})
        gtk_box_pack_start(GTK_BOX(hero), part, FALSE, FALSE, 0);
    gtk_box_pack_start(box_, hero, FALSE, FALSE, 0);
    gtk_widget_show_all(hero);
}

void PaneView::fillHero(const SettingsHero& hero) {
    const bool hasIcon =
        gtk_icon_theme_has_icon(gtk_icon_theme_get_default(), hero.iconName.c_str()) != FALSE;
    gtk_widget_set_visible(heroImage_, hasIcon);
    if (hasIcon)
        gtk_image_set_from_icon_name(GTK_IMAGE(heroImage_), hero.iconName.c_str(), GTK_ICON_SIZE_DIALOG);
    gtk_label_set_text(GTK_LABEL(heroTitle_), hero.title.c_str());
    gtk_label_set_text(GTK_LABEL(heroText_), hero.text.c_str());
}

std::unique_ptr<PaneView::Group> PaneView::makeGroup(const SettingsGroup& group) {
    auto view = std::make_unique<Group>();
    view->group = HDY_PREFERENCES_GROUP(hdy_preferences_group_new());
    GtkContainer* container = GTK_CONTAINER(view->group);
    if (group.isExpanded) {
        view->card = HDY_EXPANDER_ROW(hdy_expander_row_new());
        gtk_container_add(container, GTK_WIDGET(view->card));
        container = GTK_CONTAINER(view->card);
        view->expanding = Signal::connect<void, GParamSpec*>(
            view->card, "notify::expanded", [this, id = group.id](HdyExpanderRow* card, GParamSpec*) {
                if (!isShowing_) wishes_.setExpanded(id, hdy_expander_row_get_expanded(card) != FALSE);
            });
    }
    for (const SettingsRow& row : group.rows) {
        view->rows.push_back(std::make_unique<RowView>(row, wishes_.act));
        gtk_container_add(container, view->rows.back()->widget());
    }
    gtk_box_pack_start(box_, GTK_WIDGET(view->group), FALSE, FALSE, 0);
    if (view->card) gtk_widget_show(GTK_WIDGET(view->card));
    gtk_widget_show(GTK_WIDGET(view->group));
    return view;
}

void PaneView::fill(Group& view, const SettingsGroup& group) {
    if (view.card) {
        hdy_preferences_row_set_title(HDY_PREFERENCES_ROW(view.card), group.title.c_str());
        hdy_expander_row_set_subtitle(view.card, group.description.c_str());
        hdy_expander_row_set_expanded(view.card, *group.isExpanded);
        nameForAccess(GTK_WIDGET(view.card), group.title);
    } else {
        hdy_preferences_group_set_title(view.group, group.title.c_str());
        hdy_preferences_group_set_description(view.group, group.description.c_str());
        nameForAccess(GTK_WIDGET(view.group), group.title);
    }
    for (std::size_t i = 0; i < view.rows.size(); ++i) view.rows[i]->show(group.rows[i]);
}

}  // namespace quillmar
