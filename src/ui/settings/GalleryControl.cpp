#include <algorithm>

#include "linux/glib/Ref.h"
#include "ui/settings/RowControl.h"

namespace quillmar {
namespace {

constexpr int cardIconSize = 32;
constexpr int cardTextChars = 22;  // what a card would like to be wide; as many as fit stand in a line
constexpr int mostColumns = 3;

/// One choice with its picture.
struct Card {
    GtkWidget* icon = gtk_image_new();
    GtkWidget* title = wrappedLabel("quillmar-card-title");
    GtkWidget* subtitle = wrappedLabel("subtitle");
    GtkWidget* child = gtk_flow_box_child_new();

    Card() {
        GtkWidget* texts = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
        gtk_widget_set_valign(texts, GTK_ALIGN_CENTER);
        gtk_widget_set_hexpand(texts, TRUE);
        for (GtkWidget* label : {title, subtitle}) {
            gtk_label_set_max_width_chars(GTK_LABEL(label), cardTextChars);
            gtk_container_add(GTK_CONTAINER(texts), label);
        }
        GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 10);
        gtk_image_set_pixel_size(GTK_IMAGE(icon), cardIconSize);
        gtk_container_add(GTK_CONTAINER(line), icon);
        gtk_container_add(GTK_CONTAINER(line), texts);
        gtk_container_add(GTK_CONTAINER(child), line);
        setStyleClass(child, "quillmar-card");
        gtk_widget_show_all(child);
    }
    void show(const SettingsRow::Gallery::Card& card) const {
        gtk_image_set_from_icon_name(GTK_IMAGE(icon), card.iconName.c_str(), GTK_ICON_SIZE_DND);
        gtk_widget_set_visible(icon, !card.iconName.empty());
        gtk_label_set_text(GTK_LABEL(title), card.title.c_str());
        setTextOrHide(subtitle, card.subtitle);
        nameForAccess(child, card.title);
        describeForAccess(child, card.subtitle);
    }
};

/// Cards in as many columns as there is room for. The arrow keys go from one to the next and choose it, as
/// they do among radio buttons.
class GalleryControl final : public RowControl {
public:
    explicit GalleryControl(Wish wish)
        : box_(GTK_FLOW_BOX(gtk_flow_box_new())),
          widths_(Ref<GtkSizeGroup>::adopt(gtk_size_group_new(GTK_SIZE_GROUP_HORIZONTAL))) {
        gtk_flow_box_set_selection_mode(box_, GTK_SELECTION_BROWSE);
        gtk_flow_box_set_max_children_per_line(box_, mostColumns);
        gtk_flow_box_set_column_spacing(box_, 6);
        gtk_flow_box_set_row_spacing(box_, 6);
        gtk_widget_set_hexpand(GTK_WIDGET(box_), TRUE);
        choosing_ = Signal::connect<void>(
            box_, "selected-children-changed", [this, wish = std::move(wish)](GtkFlowBox*) {
                if (const std::string chosen = chosenCard(); !chosen.empty() && chosen != toldCard_)
                    wish(toldCard_ = chosen);
            });
        keys_ = Signal::connect<gboolean, GdkEventKey*>(
            box_, "key-press-event", [this](GtkFlowBox*, GdkEventKey* key) { return keyPressed(*key); });
        tabbing_ = makeOneTabStop(GTK_CONTAINER(box_), [this] { return GTK_WIDGET(chosenChild()); });
    }
    GtkWidget* widget() const override { return GTK_WIDGET(box_); }
    void show(const SettingsRow& row) override {
        const auto& gallery = std::get<SettingsRow::Gallery>(row.control);
        if (gallery.cards != shown_) fill(gallery.cards);
        toldCard_ = gallery.chosen;
        const auto chosen = std::ranges::find(shown_, gallery.chosen, &SettingsRow::Gallery::Card::id);
        if (chosen == shown_.end()) {
            gtk_flow_box_unselect_all(box_);
        } else if (gallery.chosen != chosenCard()) {
            gtk_flow_box_select_child(
                box_, gtk_flow_box_get_child_at_index(box_, static_cast<int>(chosen - shown_.begin())));
        }
    }

private:
    void fill(const std::vector<SettingsRow::Gallery::Card>& cards) {
        while (cards_.size() > cards.size()) {
            gtk_widget_destroy(cards_.back().child);
            cards_.pop_back();
        }
        while (cards_.size() < cards.size()) {
            cards_.emplace_back();
            gtk_container_add(GTK_CONTAINER(box_), cards_.back().child);
            gtk_size_group_add_widget(widths_.get(), cards_.back().child);
        }
        shown_ = cards;
        for (std::size_t i = 0; i < cards.size(); ++i) cards_[i].show(cards[i]);
    }
    /// The step to where an arrow key goes, in cards; 0 for any other key.
    int stepOf(const GdkEventKey& key) const {
        if ((key.state & gtk_accelerator_get_default_mod_mask()) != 0) return 0;
        switch (key.keyval) {
            case GDK_KEY_Left: return -1;
            case GDK_KEY_Right: return 1;
            case GDK_KEY_Up: return -columns();
            case GDK_KEY_Down: return columns();
            default: return 0;
        }
    }
    int columns() const {
        const auto top = [](const Card& card) {
            GtkAllocation room{};
            gtk_widget_get_allocation(card.child, &room);
            return room.y;
        };
        return static_cast<int>(std::ranges::count_if(
            cards_, [&](const Card& card) { return top(card) == top(cards_.front()); }));
    }
    /// What a flow box within a list makes of the upward and downward arrows is to leave itself.
    gboolean keyPressed(const GdkEventKey& key) {
        GtkFlowBoxChild* from = chosenChild();
        const int step = stepOf(key);
        GtkFlowBoxChild* next = from && step != 0
                                    ? gtk_flow_box_get_child_at_index(
                                          box_, std::max(-1, gtk_flow_box_child_get_index(from) + step))
                                    : nullptr;
        if (!next) return FALSE;
        gtk_flow_box_select_child(box_, next);
        gtk_widget_grab_focus(GTK_WIDGET(next));
        return TRUE;
    }
    GtkFlowBoxChild* chosenChild() const {
        GList* chosen = gtk_flow_box_get_selected_children(box_);
        auto* child = static_cast<GtkFlowBoxChild*>(chosen ? chosen->data : nullptr);
        g_list_free(chosen);
        return child;
    }
    std::string chosenCard() const {
        GtkFlowBoxChild* child = chosenChild();
        return child ? shown_[static_cast<std::size_t>(gtk_flow_box_child_get_index(child))].id
                     : std::string();
    }

    GtkFlowBox* box_;
    Ref<GtkSizeGroup> widths_;  ///< columns of one width, but lines as high as their own cards
    std::vector<Card> cards_;
    std::vector<SettingsRow::Gallery::Card> shown_;
    std::string toldCard_;  ///< the choice as both sides know it
    Signal choosing_;
    Signal keys_;
    Signal tabbing_;
};

}  // namespace

std::unique_ptr<RowControl> makeGalleryControl(RowControl::Wish wish) {
    return std::make_unique<GalleryControl>(std::move(wish));
}

}  // namespace quillmar
