#include "ui/settings/PaneView.h"

#include <algorithm>

#include "ui/settings/FitBox.h"

namespace quillmar {
namespace {

constexpr int heroIconSize = 96;
constexpr int leastMapWidth = 280;
constexpr int newRowsPerFrame = 5;

GtkWidget* heroLabel(const char* styleClass) {
    GtkWidget* label = gtk_label_new(nullptr);
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    gtk_widget_set_can_focus(label, FALSE);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    setStyleClass(label, styleClass);
    return label;
}

}  // namespace

PaneView::PaneView(GtkBox* box, Wishes wishes) : box_(box), wishes_(std::move(wishes)) { makeHero(); }

PaneView::~PaneView() {
    if (nextFrame_ != 0) gtk_widget_remove_tick_callback(GTK_WIDGET(box_), nextFrame_);
}

void PaneView::show(SettingsPane pane) {
    pane_ = std::move(pane);
    showNow();
    if (newRowsLeft_ >= 0 || nextFrame_ != 0) return;
    nextFrame_ = gtk_widget_add_tick_callback(
        GTK_WIDGET(box_),
        [](GtkWidget*, GdkFrameClock*, gpointer data) -> gboolean {
            auto* self = static_cast<PaneView*>(data);
            self->showNow();
            if (self->newRowsLeft_ < 0) return G_SOURCE_CONTINUE;
            self->nextFrame_ = 0;
            return G_SOURCE_REMOVE;
        },
        this, nullptr);
}

void PaneView::showNow() {
    isShowing_ = true;
    newRowsLeft_ = newRowsPerFrame;
    gtk_widget_set_visible(hero_, pane_.hero.has_value());
    if (pane_.hero) fillHero(*pane_.hero);
    showDisplays(pane_);
    auto former = std::exchange(groups_, {});
    for (const SettingsGroup& group : pane_.groups) groups_.push_back(takeGroup(former, group));
    for (const auto& group : former) {
        if (group) gtk_widget_destroy(group->group);
    }
    for (std::size_t i = 0; i < groups_.size(); ++i) {
        // Below the hero and the displays.
        gtk_box_reorder_child(box_, groups_[i]->group, static_cast<int>(i) + (displays_ ? 2 : 1));
        fill(*groups_[i], pane_.groups[i]);
    }
    isShowing_ = false;
}

void PaneView::makeHero() {
    heroImage_ = gtk_image_new();
    gtk_image_set_pixel_size(GTK_IMAGE(heroImage_), heroIconSize);
    heroTitle_ = heroLabel("quillmar-hero-title");
    heroText_ = heroLabel("dim-label");
    hero_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    for (GtkWidget* part : {heroImage_, heroTitle_, heroText_}) {
        gtk_box_pack_start(GTK_BOX(hero_), part, FALSE, FALSE, 0);
        gtk_widget_show(part);
    }
    gtk_box_pack_start(box_, hero_, FALSE, FALSE, 0);
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

void PaneView::showDisplays(const SettingsPane& pane) {
    if (!displays_) {
        if (!pane.arrangement && !pane.preview) return;
        arrangement_ = std::make_unique<ArrangementView>(wishes_.act);
        preview_ = std::make_unique<PreviewView>();
        displays_ = fitBoxNew(arrangement_->widget(), preview_->widget(), leastMapWidth);
        gtk_box_pack_start(box_, displays_, FALSE, FALSE, 0);
    }
    gtk_widget_set_visible(displays_, pane.arrangement || pane.preview);
    gtk_widget_set_visible(arrangement_->widget(), pane.arrangement.has_value());
    gtk_widget_set_visible(preview_->widget(), pane.preview.has_value());
    if (pane.arrangement) arrangement_->show(*pane.arrangement);
    if (pane.preview) preview_->show(*pane.preview);
}

std::unique_ptr<PaneView::Group> PaneView::takeGroup(std::vector<std::unique_ptr<Group>>& from,
                                                     const SettingsGroup& group) {
    const auto same = std::ranges::find_if(from, [&](const auto& view) {
        return view && view->id == group.id && (view->card != nullptr) == group.isExpanded.has_value();
    });
    return same == from.end() ? makeGroup(group) : std::move(*same);
}

std::unique_ptr<PaneView::Group> PaneView::makeGroup(const SettingsGroup& group) {
    auto view = std::make_unique<Group>();
    view->id = group.id;
    view->group = hdy_preferences_group_new();
    if (group.isExpanded) {
        view->card = HDY_EXPANDER_ROW(hdy_expander_row_new());
        gtk_container_add(GTK_CONTAINER(view->group), GTK_WIDGET(view->card));
        view->expanding = Signal::connect<void, GParamSpec*>(
            view->card, "notify::expanded", [this, id = group.id](HdyExpanderRow* card, GParamSpec*) {
                if (!isShowing_) wishes_.setExpanded(id, hdy_expander_row_get_expanded(card) != FALSE);
            });
        gtk_widget_show(GTK_WIDGET(view->card));
    }
    gtk_box_pack_start(box_, view->group, FALSE, FALSE, 0);
    gtk_widget_show(view->group);
    return view;
}

void PaneView::fill(Group& view, const SettingsGroup& group) {
    if (view.card) {
        hdy_preferences_row_set_title(HDY_PREFERENCES_ROW(view.card), group.title.c_str());
        hdy_expander_row_set_subtitle(view.card, group.description.c_str());
        hdy_expander_row_set_expanded(view.card, *group.isExpanded);
        nameForAccess(GTK_WIDGET(view.card), group.title);
    } else {
        HdyPreferencesGroup* widget = HDY_PREFERENCES_GROUP(view.group);
        hdy_preferences_group_set_title(widget, group.title.c_str());
        hdy_preferences_group_set_description(widget, group.description.c_str());
        nameForAccess(view.group, group.title);
    }
    fillRows(view, group);
}

/// Rows that stay keep their widgets: who changes a choice on which other rows depend does not lose it.
void PaneView::fillRows(Group& view, const SettingsGroup& group) {
    auto former = std::exchange(view.rows, {});
    std::vector<std::unique_ptr<RowView>> rows;
    for (const SettingsRow& row : group.rows) {
        const auto same =
            std::ranges::find_if(former, [&](const auto& other) { return other && other->fits(row); });
        rows.push_back(same == former.end() ? nullptr : std::move(*same));
    }
    for (const auto& row : former) {
        if (row) gtk_widget_destroy(row->widget());
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i]) {
            rows[i]->show(group.rows[i]);
        } else if (newRowsLeft_ > 0) {
            --newRowsLeft_;
            rows[i] = std::make_unique<RowView>(group.rows[i], wishes_.act);
        } else {
            newRowsLeft_ = -1;  // one was left for the next frame
            continue;
        }
        addRow(view, *rows[i], static_cast<int>(view.rows.size()));
        view.rows.push_back(std::move(rows[i]));
    }
}

void PaneView::addRow(Group& view, RowView& row, int position) {
    GtkWidget* widget = row.widget();
    if (!view.list) {
        gtk_container_add(view.card ? GTK_CONTAINER(view.card) : GTK_CONTAINER(view.group), widget);
        view.list = gtk_widget_get_parent(widget);
        view.activating = Signal::connect<void, GtkListBoxRow*>(
            GTK_LIST_BOX(view.list), "row-activated", [&view](GtkListBox*, GtkListBoxRow* activated) {
                for (const auto& each : view.rows) {
                    if (each->widget() == GTK_WIDGET(activated)) each->activate();
                }
            });
        return;
    }
    if (gtk_widget_get_parent(widget) == view.list) {
        if (gtk_list_box_row_get_index(GTK_LIST_BOX_ROW(widget)) == position) return;
        g_object_ref(widget);
        gtk_container_remove(GTK_CONTAINER(view.list), widget);
        gtk_list_box_insert(GTK_LIST_BOX(view.list), widget, position);
        g_object_unref(widget);
        return;
    }
    gtk_list_box_insert(GTK_LIST_BOX(view.list), widget, position);
}

}  // namespace quillmar
