#include "linux/gtk/GtkScreens.h"

#include <X11/Xlib-xcb.h>
#include <gdk/gdk.h>
#include <gdk/gdkx.h>
#include <xcb/randr.h>

#include "linux/glib/Signal.h"
#include "linux/x11/OutputMemory.h"
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

/// The toolkit's own connection.
X11Server serverOf(GdkDisplay* display) {
    xcb_connection_t* connection = XGetXCBConnection(gdk_x11_display_get_xdisplay(display));
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = DefaultScreen(gdk_x11_display_get_xdisplay(display)); i > 0; --i) xcb_screen_next(&screens);
    return {connection, screens.data};
}

std::vector<Screen> readScreens(GdkDisplay* display, OutputMemory& memory) {
    std::vector<Screen> screens;
    GdkMonitor* primary = primaryMonitor(display);
    if (!primary) return screens;
    const GdkRectangle origin = geometryOf(primary);
    const auto outputs = connectedOutputs(serverOf(display));
    const auto uuids = memory.identify(outputs);
    for (int i = 0; i < gdk_display_get_n_monitors(display); ++i) {
        GdkMonitor* monitor = gdk_display_get_monitor(display, i);
        GdkRectangle workarea{};
        gdk_monitor_get_workarea(monitor, &workarea);
        Screen screen;
        screen.number = numberOf(monitor);
        screen.frame = turned(geometryOf(monitor), origin);
        screen.visibleFrame = turned(workarea, origin);
        screen.scaleFactor = gdk_monitor_get_scale_factor(monitor);
        for (std::size_t at = 0; at < outputs.size(); ++at) {
            const ConnectedOutput& output = outputs[at];
            if (output.number != screen.number) continue;
            screen.uuid = uuids[at];
            screen.connector = output.connector;
            screen.localizedName = outputName(output);
            screen.area = output.area.value_or(PixelRect{});
        }
        screens.push_back(std::move(screen));
    }
    return screens;
}

}  // namespace

struct GtkScreens::State {
    State(std::filesystem::path identities, Executor& files)
        : memory(std::move(identities), files),
          display(gdk_display_get_default()),
          screen(gdk_display_get_default_screen(display)),
          root(gdk_screen_get_root_window(screen)) {
        const X11Server server = serverOf(display);
        const xcb_query_extension_reply_t* randr = xcb_get_extension_data(server.connection, &xcb_randr_id);
        if (randr) randrEvents = randr->first_event;
        // GDK asks for all but the last: a monitor that is plugged in and stays dark tells on its twin all
        // the same.
        xcb_randr_select_input(server.connection, server.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
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
        const bool isRandr = randrEvent == XCB_RANDR_SCREEN_CHANGE_NOTIFY || randrEvent == XCB_RANDR_NOTIFY;
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

    OutputMemory memory;
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

GtkScreens::GtkScreens(std::filesystem::path identities, Executor& files)
    : state_(std::make_unique<State>(std::move(identities), files)) {}
GtkScreens::~GtkScreens() = default;

std::vector<Screen> GtkScreens::screens() const {
    if (!state_->known) state_->known = readScreens(state_->display, state_->memory);
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
