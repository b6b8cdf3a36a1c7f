#include "linux/gtk/GtkScreens.h"

#include <X11/extensions/Xrandr.h>
#include <gdk/gdk.h>
#include <gdk/gdkx.h>

#include "linux/glib/Signal.h"
#include "linux/x11/X11Outputs.h"

namespace quillmar {

namespace {

/// GDK's points have the origin at the top left of the whole desktop and y downwards.
CGRectCodable turned(const GdkRectangle& rect, const GdkRectangle& primary) {
    return {static_cast<double>(rect.x - primary.x),
            static_cast<double>(primary.y + primary.height - rect.y - rect.height),
            static_cast<double>(rect.width), static_cast<double>(rect.height)};
}

GdkRectangle geometryOf(GdkMonitor* monitor) {
    GdkRectangle rect{};
    gdk_monitor_get_geometry(monitor, &rect);
    return rect;
}

GdkMonitor* primaryMonitor(GdkDisplay* display) {
    GdkMonitor* primary = gdk_display_get_primary_monitor(display);
    return primary ? primary : gdk_display_get_monitor(display, 0);
}

std::uint32_t numberOf(GdkMonitor* monitor) {
    return static_cast<std::uint32_t>(gdk_x11_monitor_get_output(monitor));
}

std::vector<Screen> readScreens(GdkDisplay* display) {
    std::vector<Screen> screens;
    GdkMonitor* primary = primaryMonitor(display);
    if (!primary) return screens;
    const GdkRectangle origin = geometryOf(primary);
    const auto outputs = connectedOutputs(gdk_x11_display_get_xdisplay(display));
    const auto uuids = outputUuids(outputs);
    for (int i = 0; i < gdk_display_get_n_monitors(display); ++i) {
        GdkMonitor* monitor = gdk_display_get_monitor(display, i);
        GdkRectangle workarea{};
        gdk_monitor_get_workarea(monitor, &workarea);
        Screen screen;
        screen.number = numberOf(monitor);
        screen.frame = turned(geometryOf(monitor), origin);
        screen.visibleFrame = turned(workarea, origin);
        screen.scaleFactor = gdk_monitor_get_scale_factor(monitor);
        for (const ConnectedOutput& output : outputs) {
            if (output.number != screen.number) continue;
            screen.uuid = uuids.at(output.number);
            screen.connector = output.connector;
            screen.localizedName = outputName(output);
        }
        screens.push_back(std::move(screen));
    }
    return screens;
}

}  // namespace

struct GtkScreens::State {
    State()
        : display(gdk_display_get_default()),
          screen(gdk_display_get_default_screen(display)),
          root(gdk_screen_get_root_window(screen)) {
        Display* xdisplay = gdk_x11_display_get_xdisplay(display);
        int errorBase = 0;
        XRRQueryExtension(xdisplay, &randrEvents, &errorBase);
        // GDK asks for all but the last: a monitor that is plugged in and stays dark tells on its twin all
        // the same.
        XRRSelectInput(xdisplay, GDK_WINDOW_XID(root),
                       RRScreenChangeNotifyMask | RRCrtcChangeNotifyMask | RROutputPropertyNotifyMask |
                           RROutputChangeNotifyMask);
        gdk_window_set_events(
            root, static_cast<GdkEventMask>(gdk_window_get_events(root) | GDK_PROPERTY_CHANGE_MASK));
        gdk_window_add_filter(root, &rootEvent, this);
        const auto changed = [this](GdkScreen*) { willHaveChanged(); };
        monitorsChanged = Signal::connect<void>(screen, "monitors-changed", changed);
        sizeChanged = Signal::connect<void>(screen, "size-changed", changed);
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        gdk_window_remove_filter(root, &rootEvent, this);
        if (announcement != 0) g_source_remove(announcement);
    }

    static GdkFilterReturn rootEvent(GdkXEvent* event, GdkEvent*, gpointer data) {
        auto* state = static_cast<State*>(data);
        const auto* xevent = static_cast<XEvent*>(event);
        const int randrEvent = xevent->type - state->randrEvents;
        const bool isRandr = randrEvent == RRScreenChangeNotify || randrEvent == RRNotify;
        if (isRandr || (xevent->type == PropertyNotify && state->isWorkarea(xevent->xproperty.atom))) {
            state->willHaveChanged();
        }
        return GDK_FILTER_CONTINUE;
    }
    bool isWorkarea(Atom property) const {
        const char* name = gdk_x11_get_xatom_name_for_display(display, property);
        return name && (g_str_has_prefix(name, "_GTK_WORKAREAS_D") || g_str_equal(name, "_NET_WORKAREA"));
    }
    /// GDK is told of a change after us, and of some changes it says nothing itself: so the word is given
    /// from the main loop, when GDK has the new arrangement.
    void willHaveChanged() {
        known.reset();
        if (announcement == 0) announcement = g_idle_add_full(G_PRIORITY_DEFAULT, &announce, this, nullptr);
    }
    static gboolean announce(gpointer data) {
        auto* state = static_cast<State*>(data);
        state->announcement = 0;
        state->known.reset();
        const auto held = state->handler;  // it may be replaced while it runs
        if (held && *held) (*held)();
        return G_SOURCE_REMOVE;
    }

    GdkDisplay* display;
    GdkScreen* screen;
    GdkWindow* root;
    int randrEvents = 0;
    guint announcement = 0;
    std::shared_ptr<std::function<void()>> handler;
    std::optional<std::vector<Screen>>
        known;  ///< read once for each arrangement: the window server is slow to ask
    Signal monitorsChanged;
    Signal sizeChanged;
};

GtkScreens::GtkScreens() : state_(std::make_unique<State>()) {}
GtkScreens::~GtkScreens() = default;

std::vector<Screen> GtkScreens::screens() const {
    if (!state_->known) state_->known = readScreens(state_->display);
    return *state_->known;
}

std::uint32_t GtkScreens::primaryScreenNumber() const {
    GdkMonitor* primary = primaryMonitor(state_->display);
    return primary ? numberOf(primary) : 0;
}

void GtkScreens::setChangeHandler(std::function<void()> handler) {
    state_->handler = std::make_shared<std::function<void()>>(std::move(handler));
}

}  // namespace quillmar
