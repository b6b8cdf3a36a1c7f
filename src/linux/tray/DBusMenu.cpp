#include "linux/tray/DBusMenu.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillmar {
namespace {

constexpr const char* interfaceName = "com.canonical.dbusmenu";
constexpr const char* interfaceXml = R"xml(<node><interface name="com.canonical.dbusmenu">
<property name="Version" type="u" access="read"/><property name="TextDirection" type="s" access="read"/>
<property name="Status" type="s" access="read"/><property name="IconThemePath" type="as" access="read"/>
<method name="GetLayout"><arg type="i" direction="in"/><arg type="i" direction="in"/>
<arg type="as" direction="in"/><arg type="u" direction="out"/><arg type="(ia{sv}av)" direction="out"/></method>
<method name="GetGroupProperties"><arg type="ai" direction="in"/><arg type="as" direction="in"/>
<arg type="a(ia{sv})" direction="out"/></method>
<method name="GetProperty"><arg type="i" direction="in"/><arg type="s" direction="in"/>
<arg type="v" direction="out"/></method>
<method name="Event"><arg type="i" direction="in"/><arg type="s" direction="in"/>
<arg type="v" direction="in"/><arg type="u" direction="in"/></method>
<method name="EventGroup"><arg type="a(isvu)" direction="in"/><arg type="ai" direction="out"/></method>
<method name="AboutToShow"><arg type="i" direction="in"/><arg type="b" direction="out"/></method>
<method name="AboutToShowGroup"><arg type="ai" direction="in"/><arg type="ai" direction="out"/>
<arg type="ai" direction="out"/></method>
<signal name="ItemsPropertiesUpdated"><arg type="a(ia{sv})"/><arg type="a(ias)"/></signal>
<signal name="LayoutUpdated"><arg type="u"/><arg type="i"/></signal>
<signal name="ItemActivationRequested"><arg type="i"/><arg type="u"/></signal>
</interface></node>)xml";
constexpr int rootID = 0;
constexpr int wholeDepth = -1;

/// An underscore marks the letter that chooses an entry; two of them are one.
std::string labelOf(const std::string& title) {
    std::string label;
    for (const char character : title) label.append(character == '_' ? 2 : 1, character);
    const Owned<char> valid(g_utf8_make_valid(label.data(), static_cast<gssize>(label.size())));
    return valid.get();
}

GVariant* shortcut(const std::string& key) {
    const char* const keys[] = {"Control", key.c_str()};
    GVariant* const pressed = g_variant_new_strv(keys, 2);
    return g_variant_new_array(G_VARIANT_TYPE("as"), &pressed, 1);
}

/// What differs from the interface's own defaults.
GVariant* propertiesOf(const StatusMenuItem& item) {
    GVariantDict properties;
    g_variant_dict_init(&properties, nullptr);
    if (item.kind == StatusMenuItem::Kind::separator) {
        g_variant_dict_insert(&properties, "type", "s", "separator");
        return g_variant_dict_end(&properties);
    }
    g_variant_dict_insert(&properties, "label", "s", labelOf(item.title).c_str());
    if (!item.isEnabled) g_variant_dict_insert(&properties, "enabled", "b", FALSE);
    if (!item.image.empty()) g_variant_dict_insert(&properties, "icon-name", "s", item.image.c_str());
    if (!item.key.empty()) g_variant_dict_insert_value(&properties, "shortcut", shortcut(item.key));
    if (item.kind == StatusMenuItem::Kind::check) {
        g_variant_dict_insert(&properties, "toggle-type", "s", "checkmark");
        g_variant_dict_insert(&properties, "toggle-state", "i", item.isChecked ? 1 : 0);
    }
    if (item.kind == StatusMenuItem::Kind::submenu)
        g_variant_dict_insert(&properties, "children-display", "s", "submenu");
    return g_variant_dict_end(&properties);
}

std::vector<int> numbersIn(GVariant* list) {
    gsize count = 0;
    const auto* numbers = static_cast<const gint32*>(g_variant_get_fixed_array(list, &count, sizeof(gint32)));
    return {numbers, numbers + count};
}

GVariant* listOf(const std::vector<int>& numbers) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_INT32, numbers.data(), numbers.size(), sizeof(gint32));
}

Owned<GVariant> child(GVariant* tuple, gsize at) {
    return Owned<GVariant>(g_variant_get_child_value(tuple, at));
}

int numberIn(GVariant* tuple, gsize at) { return g_variant_get_int32(child(tuple, at).get()); }

std::string textIn(GVariant* tuple, gsize at) {
    return g_variant_get_string(child(tuple, at).get(), nullptr);
}

}  // namespace

DBusMenu::DBusMenu(Bus bus, StatusIconAnswering& answering) : bus_(std::move(bus)), answering_(answering) {
    static constexpr GDBusInterfaceVTable methods{&called, &property, nullptr, {}};
    refresh();
    const Owned<GDBusNodeInfo> description(g_dbus_node_info_new_for_xml(interfaceXml, nullptr));
    object_ = g_dbus_connection_register_object(bus_.get(), objectPath, description->interfaces[0], &methods,
                                                this, nullptr, nullptr);
}

DBusMenu::~DBusMenu() {
    if (object_ != 0) g_dbus_connection_unregister_object(bus_.get(), object_);
}

void DBusMenu::menuDidChange() {
    if (!isOpen_) refresh();
}

/// Takes the menu as it is now; whether that is another one.
bool DBusMenu::refresh() {
    StatusMenu menu = answering_.contextMenu();
    if (revision_ != 0 && menu == menu_) return false;
    menu_ = std::move(menu);
    replaced_ = std::exchange(entries_, {});
    entries_[rootID] = {{.kind = StatusMenuItem::Kind::submenu}, add(menu_)};
    ++revision_;
    g_dbus_connection_emit_signal(bus_.get(), nullptr, objectPath, interfaceName, "LayoutUpdated",
                                  g_variant_new("(ui)", revision_, rootID), nullptr);
    return true;
}

std::vector<int> DBusMenu::add(StatusMenu menu) {
    std::vector<int> ids;
    for (StatusMenuItem& item : menu) {
        const int id = ++lastID_;
        std::vector<int> children = add(std::exchange(item.items, {}));
        entries_[id] = {std::move(item), std::move(children)};
        ids.push_back(id);
    }
    return ids;
}

const DBusMenu::Entry* DBusMenu::find(int id) const {
    for (const Entries* entries : {&entries_, &replaced_})
        if (const auto found = entries->find(id); found != entries->end()) return &found->second;
    return nullptr;
}

GVariant* DBusMenu::layout(int id, int depth) const {
    const Entry* entry = find(id);
    GVariantBuilder children;
    g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
    if (depth != 0) {
        for (const int childID : entry->children)
            g_variant_builder_add(&children, "v", layout(childID, std::max(depth - 1, wholeDepth)));
    }
    return g_variant_new("(i@a{sv}av)", id, propertiesOf(entry->item), &children);
}

GVariant* DBusMenu::groupProperties(GVariant* list) const {
    std::vector<int> ids = numbersIn(list);
    if (ids.empty())
        for (const auto& entry : entries_) ids.push_back(entry.first);
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a(ia{sv})"));
    for (const int id : ids)
        if (const Entry* entry = find(id))
            g_variant_builder_add(&properties, "(i@a{sv})", id, propertiesOf(entry->item));
    return g_variant_new("(a(ia{sv}))", &properties);
}

/// Whether the panel has to ask for the layout again.
bool DBusMenu::aboutToShow(int id) {
    if (id != rootID) return false;
    answering_.contextMenuWillShow();
    return refresh();
}

/// False where there is no such entry.
bool DBusMenu::happened(int id, std::string_view event) {
    const Entry* entry = find(id);
    if (!entry) return false;
    if (id == rootID && (event == "opened" || event == "closed")) isOpen_ = event == "opened";
    if (event == "clicked" && entry->item.isEnabled && id != rootID) answering_.chosen(entry->item.command);
    return true;
}

/// The answer to a call; null where it is about an entry that is not there.
GVariant* DBusMenu::answer(std::string_view method, GVariant* parameters) {
    if (method == "GetGroupProperties") return groupProperties(child(parameters, 0).get());
    if (method == "AboutToShow") return g_variant_new("(b)", aboutToShow(numberIn(parameters, 0)));
    if (method == "AboutToShowGroup" || method == "EventGroup") {
        const Owned<GVariant> list = child(parameters, 0);
        std::vector<int> changed;
        std::vector<int> unknown;
        for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
            const Owned<GVariant> one = child(list.get(), i);
            const int id = method == "EventGroup" ? numberIn(one.get(), 0) : g_variant_get_int32(one.get());
            if (method == "EventGroup" ? !happened(id, textIn(one.get(), 1)) : !find(id))
                unknown.push_back(id);
            if (method == "AboutToShowGroup" && aboutToShow(id)) changed.push_back(id);
        }
        if (method == "EventGroup") return g_variant_new("(@ai)", listOf(unknown));
        return g_variant_new("(@ai@ai)", listOf(changed), listOf(unknown));
    }
    const int id = numberIn(parameters, 0);
    if (method == "Event") return happened(id, textIn(parameters, 1)) ? g_variant_new("()") : nullptr;
    const Entry* entry = find(id);
    if (!entry) return nullptr;
    // All properties, whichever were asked for: they are few.
    if (method == "GetLayout")
        return g_variant_new("(u@(ia{sv}av))", revision_,
                             layout(id, std::max(numberIn(parameters, 1), wholeDepth)));
    const Owned<GVariant> properties(g_variant_ref_sink(propertiesOf(entry->item)));
    GVariant* value = g_variant_lookup_value(properties.get(), textIn(parameters, 1).c_str(), nullptr);
    if (!value) return nullptr;
    const Owned<GVariant> held(value);
    return g_variant_new("(v)", value);
}

void DBusMenu::called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                      GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data) {
    if (GVariant* const answer = static_cast<DBusMenu*>(data)->answer(method, parameters)) {
        g_dbus_method_invocation_return_value(invocation, answer);
    } else {
        g_dbus_method_invocation_return_error(invocation, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                              "The menu has no such entry");
    }
}

GVariant* DBusMenu::property(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* name,
                             GError**, gpointer) {
    const std::string_view wanted = name;
    if (wanted == "Version") return g_variant_new_uint32(3);
    if (wanted == "TextDirection") return g_variant_new_string("ltr");
    if (wanted == "Status") return g_variant_new_string("normal");
    return g_variant_new_strv(nullptr, 0);
}

}  // namespace quillmar
