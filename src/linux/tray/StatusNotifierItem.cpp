#include "linux/tray/StatusNotifierItem.h"

#include <fmt/format.h>
#include <unistd.h>

#include <string_view>

#include "diagnostics/Log.h"

namespace quillmar {
namespace {

constexpr const char* objectPath = "/StatusNotifierItem";
constexpr const char* interfaceName = "org.kde.StatusNotifierItem";
constexpr const char* interfaceXml = R"xml(<node><interface name="org.kde.StatusNotifierItem">
<property name="Category" type="s" access="read"/><property name="Id" type="s" access="read"/>
<property name="Title" type="s" access="read"/><property name="Status" type="s" access="read"/>
<property name="WindowId" type="u" access="read"/><property name="IconThemePath" type="s" access="read"/>
<property name="IconName" type="s" access="read"/><property name="IconPixmap" type="a(iiay)" access="read"/>
<property name="IconAccessibleDesc" type="s" access="read"/>
<property name="OverlayIconName" type="s" access="read"/>
<property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
<property name="AttentionIconName" type="s" access="read"/>
<property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
<property name="AttentionMovieName" type="s" access="read"/>
<property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
<property name="ItemIsMenu" type="b" access="read"/><property name="Menu" type="o" access="read"/>
<method name="ContextMenu"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="Activate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="SecondaryActivate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="Scroll"><arg type="i" direction="in"/><arg type="s" direction="in"/></method>
<signal name="NewIcon"/><signal name="NewTitle"/><signal name="NewToolTip"/><signal name="NewAttentionIcon"/>
<signal name="NewOverlayIcon"/><signal name="NewStatus"><arg type="s"/></signal>
</interface></node>)xml";
constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr int patienceMilliseconds = 5000;

/// A pixel as the bus wants it: alpha, red, green, blue.
void appendPixels(const GdkPixbuf* picture, GVariantBuilder* list) {
    const int width = gdk_pixbuf_get_width(picture);
    const int height = gdk_pixbuf_get_height(picture);
    const std::ptrdiff_t channels = gdk_pixbuf_get_n_channels(picture);
    const std::ptrdiff_t stride = gdk_pixbuf_get_rowstride(picture);
    std::vector<guint8> bytes;
    for (int y = 0; y < height; ++y) {
        const guint8* row = gdk_pixbuf_read_pixels(picture) + y * stride;
        for (const guint8* pixel = row; pixel < row + width * channels; pixel += channels) {
            const guint8 alpha = channels == 4 ? pixel[3] : guint8{0xFF};
            bytes.insert(bytes.end(), {alpha, pixel[0], pixel[1], pixel[2]});
        }
    }
    g_variant_builder_add(list, "(ii@ay)", width, height,
                          g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1));
}

GVariant* pixmaps(const std::vector<Ref<GdkPixbuf>>& pictures) {
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("a(iiay)"));
    for (const auto& picture : pictures) appendPixels(picture.get(), &list);
    return g_variant_builder_end(&list);
}

std::optional<StatusIconClick::Button> buttonOf(std::string_view method) {
    if (method == "Activate") return StatusIconClick::Button::primary;
    if (method == "SecondaryActivate") return StatusIconClick::Button::middle;
    if (method == "ContextMenu") return StatusIconClick::Button::secondary;
    return std::nullopt;
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(MainLoop& loop, const PanelIconFiles& files, StatusIconStyle style,
                                       Owner owner)
    : files_(files), style_(style), owner_(std::move(owner)), tasks_(loop) {
    tasks_.spawn(appear());
}

StatusNotifierItem::~StatusNotifierItem() {
    if (nameOwned_ != 0) g_bus_unown_name(nameOwned_);
    if (watch_ != 0) g_bus_unwatch_name(watch_);
    if (hostSignals_ != 0) g_dbus_connection_signal_unsubscribe(bus_.get(), hostSignals_);
    if (object_ != 0) g_dbus_connection_unregister_object(bus_.get(), object_);
}

void StatusNotifierItem::setStyle(StatusIconStyle style) {
    style_ = style;
    if (object_ != 0)
        g_dbus_connection_emit_signal(bus_.get(), nullptr, objectPath, interfaceName, "NewIcon", nullptr,
                                      nullptr);
}

Task<void> StatusNotifierItem::appear() {
    try {
        bus_ = co_await sessionBus();
    } catch (const std::runtime_error&) {
        tell(false);
        co_return;
    }
    static constexpr GDBusInterfaceVTable methods{&called, &property, nullptr, {}};
    const Owned<GDBusNodeInfo> description(g_dbus_node_info_new_for_xml(interfaceXml, nullptr));
    menu_ = std::make_unique<DBusMenu>(bus_, owner_.answering);
    object_ = g_dbus_connection_register_object(bus_.get(), objectPath, description->interfaces[0], &methods,
                                                this, nullptr, nullptr);
    // Panels drop the icon with the name, also while the program goes on.
    name_ = fmt::format("org.kde.StatusNotifierItem-{}-1", ::getpid());
    nameOwned_ = g_bus_own_name_on_connection(bus_.get(), name_.c_str(), G_BUS_NAME_OWNER_FLAGS_NONE, nullptr,
                                              nullptr, nullptr, nullptr);
    // Both of its signals about hosts: a watcher may be there before the panel that shows anything.
    hostSignals_ =
        g_dbus_connection_signal_subscribe(bus_.get(), watcherName, watcherName, nullptr, watcherPath,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &hostsChanged, this, nullptr);
    watch_ = g_bus_watch_name_on_connection(
        bus_.get(), watcherName, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar*, gpointer data) {
            static_cast<StatusNotifierItem*>(data)->watcherCame();
        },
        [](GDBusConnection*, const gchar*, gpointer data) {
            static_cast<StatusNotifierItem*>(data)->watcherWent();
        },
        this, nullptr);
}

void StatusNotifierItem::watcherCame() {
    if (offering_) offering_.cancel();
    offering_ = tasks_.start(offer());
}

void StatusNotifierItem::watcherWent() {
    if (offering_) offering_.cancel();
    tell(false);
}

Task<void> StatusNotifierItem::offer() {
    bool taken = false;
    try {
        co_await callOnBus(bus_, {watcherName, watcherPath, watcherName, "RegisterStatusNotifierItem",
                                  g_variant_new("(s)", name_.c_str()), patienceMilliseconds});
        taken = co_await isTaken();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        logWarning("The panel did not take the status icon.", "status-item", std::current_exception());
    }
    tell(taken);
}

/// Whether somebody shows what is offered. A watcher that does not say so is the panel itself.
Task<bool> StatusNotifierItem::isTaken() {
    try {
        const auto answer =
            co_await callOnBus(bus_, {watcherName, watcherPath, "org.freedesktop.DBus.Properties", "Get",
                                      g_variant_new("(ss)", watcherName, "IsStatusNotifierHostRegistered"),
                                      patienceMilliseconds});
        const Owned<GVariant> boxed(g_variant_get_child_value(answer.get(), 0));
        const Owned<GVariant> value(g_variant_get_variant(boxed.get()));
        co_return !g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) ||
            g_variant_get_boolean(value.get());
    } catch (const BusRefusal& refusal) {
        co_return !refusal.isAbsence();
    }
}

void StatusNotifierItem::hostsChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                      const gchar* signal, GVariant*, gpointer data) {
    const std::string_view name = signal;
    if (name == "StatusNotifierHostRegistered" || name == "StatusNotifierHostUnregistered")
        static_cast<StatusNotifierItem*>(data)->watcherCame();
}

void StatusNotifierItem::tell(bool isShown) {
    if (isShown_ == isShown) return;
    isShown_ = isShown;
    owner_.shownDidChange(isShown);
}

void StatusNotifierItem::called(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                const gchar* method, GVariant* parameters, GDBusMethodInvocation* invocation,
                                gpointer data) {
    const auto button = buttonOf(method);
    PanelPlace place;
    if (button) g_variant_get(parameters, "(ii)", &place.x, &place.y);
    g_dbus_method_invocation_return_value(invocation, nullptr);
    if (!button) return;
    // A panel that knows no place says that it is the corner.
    const bool isPlace = place.x != 0 || place.y != 0;
    static_cast<StatusNotifierItem*>(data)->owner_.clicked({.button = *button},
                                                           isPlace ? std::optional(place) : std::nullopt);
}

GVariant* StatusNotifierItem::property(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                       const gchar* name, GError**, gpointer data) {
    const auto* item = static_cast<StatusNotifierItem*>(data);
    const std::string_view wanted = name;
    if (wanted == "Category") return g_variant_new_string("ApplicationStatus");
    if (wanted == "Id") return g_variant_new_string("quillmar");
    if (wanted == "Title" || wanted == "IconAccessibleDesc") return g_variant_new_string("Quillmar");
    if (wanted == "Status") return g_variant_new_string("Active");
    if (wanted == "WindowId") return g_variant_new_uint32(0);
    if (wanted == "IconThemePath") return g_variant_new_string(item->files_.themes().c_str());
    if (wanted == "IconName") return g_variant_new_string(PanelIconFiles::name(item->style_));
    if (wanted == "IconPixmap") return pixmaps(item->files_.allSizes(item->style_));
    if (wanted == "ToolTip") return g_variant_new("(s@a(iiay)ss)", "", pixmaps({}), "Quillmar", "");
    if (wanted == "ItemIsMenu") return g_variant_new_boolean(FALSE);
    if (wanted == "Menu") return g_variant_new_object_path(DBusMenu::objectPath);
    return wanted.ends_with("Pixmap") ? pixmaps({}) : g_variant_new_string("");
}

}  // namespace quillmar
