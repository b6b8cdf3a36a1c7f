#include "ui/settings/FitBox.h"

#include <algorithm>

namespace quillmar {
namespace {

constexpr int gapBeside = 12;
constexpr int gapBelow = 6;

struct FitBox {
    GtkBox parent;
    int leastFirst;
};

/// The two, as far as they are visible.
struct Pair {
    int leastFirst = 0;
    GtkWidget* first = nullptr;
    GtkWidget* second = nullptr;
};

Pair pairOf(GtkWidget* box) {
    GList* children = gtk_container_get_children(GTK_CONTAINER(box));
    Pair pair;
    pair.leastFirst = reinterpret_cast<const FitBox*>(box)->leastFirst;
    if (children && gtk_widget_get_visible(GTK_WIDGET(children->data)))
        pair.first = GTK_WIDGET(children->data);
    if (children && children->next && gtk_widget_get_visible(GTK_WIDGET(children->next->data)))
        pair.second = GTK_WIDGET(children->next->data);
    g_list_free(children);
    return pair;
}

struct Width {
    int minimum = 0;
    int natural = 0;
};

Width widthOf(GtkWidget* widget) {
    Width width;
    if (widget) gtk_widget_get_preferred_width(widget, &width.minimum, &width.natural);
    return width;
}

int heightOf(GtkWidget* widget, int width) {
    int height = 0;
    if (widget) gtk_widget_get_preferred_height_for_width(widget, width, nullptr, &height);
    return height;
}

/// The second one's width where they stand beside each other, 0 where there is no room for that.
int besideWidth(const Pair& pair, int width) {
    if (!pair.first || !pair.second) return 0;
    const Width first = widthOf(pair.first);
    const Width second = widthOf(pair.second);
    // A text may break its lines, but not into a column of single words.
    const int needed = std::max({first.minimum, pair.leastFirst, std::min(first.natural, width * 2 / 5)});
    if (width < needed + gapBeside + second.natural) return 0;
    return gtk_widget_get_hexpand(pair.second) ? std::max(second.natural, (width - gapBeside) / 2)
                                               : second.natural;
}

GtkSizeRequestMode requestMode(GtkWidget*) { return GTK_SIZE_REQUEST_HEIGHT_FOR_WIDTH; }

void preferredWidth(GtkWidget* box, gint* minimum, gint* natural) {
    const Pair pair = pairOf(box);
    const Width first = widthOf(pair.first);
    const Width second = widthOf(pair.second);
    *minimum = std::max(first.minimum, second.minimum);
    *natural = first.natural + second.natural + (pair.first && pair.second ? gapBeside : 0);
}

void preferredHeightForWidth(GtkWidget* box, gint width, gint* minimum, gint* natural) {
    const Pair pair = pairOf(box);
    if (const int beside = besideWidth(pair, width); beside > 0) {
        *minimum = std::max(heightOf(pair.first, width - gapBeside - beside), heightOf(pair.second, beside));
    } else {
        *minimum = heightOf(pair.first, width) + heightOf(pair.second, width) +
                   (pair.first && pair.second ? gapBelow : 0);
    }
    *natural = *minimum;
}

void preferredHeight(GtkWidget* box, gint* minimum, gint* natural) {
    preferredHeightForWidth(box, widthOf(box).minimum, minimum, natural);
}

void allocate(GtkWidget* box, GtkAllocation* room) {
    gtk_widget_set_allocation(box, room);
    const Pair pair = pairOf(box);
    GtkAllocation first = *room;
    GtkAllocation second = *room;
    if (const int beside = besideWidth(pair, room->width); beside > 0) {
        first.width = room->width - gapBeside - beside;
        second.x = room->x + first.width + gapBeside;
        second.width = beside;
    } else if (pair.first && pair.second) {
        first.height = heightOf(pair.first, room->width);
        second.y = room->y + first.height + gapBelow;
        second.height = std::max(1, room->height - first.height - gapBelow);
    }
    if (pair.first) gtk_widget_size_allocate(pair.first, &first);
    if (pair.second) gtk_widget_size_allocate(pair.second, &second);
}

GType fitBoxType() {
    static const GType type = g_type_register_static_simple(
        GTK_TYPE_BOX, "QuillmarFitBox", sizeof(GtkBoxClass),
        [](gpointer classPointer, gpointer) {
            GtkWidgetClass* widget = GTK_WIDGET_CLASS(classPointer);
            widget->get_request_mode = requestMode;
            widget->get_preferred_width = preferredWidth;
            widget->get_preferred_height = preferredHeight;
            widget->get_preferred_height_for_width = preferredHeightForWidth;
            widget->size_allocate = allocate;
            // A box draws itself where its own allocation put it, which does not run here.
            widget->draw = GTK_WIDGET_CLASS(g_type_class_ref(GTK_TYPE_CONTAINER))->draw;
        },
        sizeof(FitBox), nullptr, GTypeFlags(0));
    return type;
}

}  // namespace

GtkWidget* fitBoxNew(GtkWidget* first, GtkWidget* second, int leastFirst) {
    GtkWidget* box = GTK_WIDGET(g_object_new(fitBoxType(), nullptr));
    reinterpret_cast<FitBox*>(box)->leastFirst = leastFirst;
    gtk_container_add(GTK_CONTAINER(box), first);
    gtk_container_add(GTK_CONTAINER(box), second);
    return box;
}

}  // namespace quillmar
