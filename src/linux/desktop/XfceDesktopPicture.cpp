#include "linux/desktop/XfceDesktopPicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

#include "diagnostics/Log.h"
#include "linux/dbus/BlockingBus.h"
#include "linux/desktop/DesktopFile.h"
#include "linux/desktop/VariantText.h"
#include "linux/x11/X11Workspaces.h"

namespace quillmar {

namespace {

constexpr const char* channel = "xfce4-desktop";
constexpr const char* imageKey = "last-image";
constexpr std::string_view workspacePrefix = "workspace";

/// Every value that says how a monitor shows its picture on a workspace, with those that suit ours: they have
/// the monitor's size, and the desktop must not go on to the next picture of their folder by itself. A value
/// that suits is left alone, since the desktop loads its picture anew for each change, and may crash when the
/// next one comes meanwhile.
struct StyleKey {
    const char* name;
    std::array<std::string_view, 4> suiting;  ///< the first is set where another one is; empty: not set
};
constexpr StyleKey styleKeys[]{{"image-style", {"5", "4", "3", ""}},
                               {"backdrop-cycle-enable", {"false", "", "", ""}}};

Owned<GVariant> callStore(const Bus& bus, const char* method, GVariant* arguments) {
    return callAndWait(bus, {"org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", method, arguments});
}

std::string folderOf(const Screen& screen) { return "/backdrop/screen0/monitor" + screen.connector + "/"; }

std::string keyOf(int workspace, const char* name) {
    return fmt::format("{}{}/{}", workspacePrefix, workspace, name);
}

/// The values below `folder` that are set, by their names in it.
std::map<std::string, Owned<GVariant>> valuesIn(const Bus& bus, const std::string& folder) {
    std::map<std::string, Owned<GVariant>> values;
    try {
        const std::string base = folder.substr(0, folder.size() - 1);
        const auto answer = callStore(bus, "GetAllProperties", g_variant_new("(ss)", channel, base.c_str()));
        const Owned<GVariant> all(g_variant_get_child_value(answer.get(), 0));
        GVariantIter iterator;
        g_variant_iter_init(&iterator, all.get());
        const char* name = nullptr;
        GVariant* value = nullptr;
        while (g_variant_iter_next(&iterator, "{&sv}", &name, &value)) {
            Owned<GVariant> held(value);
            if (g_str_has_prefix(name, folder.c_str())) {
                values.emplace(std::string(name).substr(folder.size()), std::move(held));
            }
        }
    } catch (const BusRefusal& refusal) {
        // The store's word for "nothing is set here".
        if (!refusal.name().ends_with("NotFound")) throw;
    }
    return values;
}

/// The workspaces that the names of the values speak of.
template <class Values>
std::set<int> workspacesIn(const Values& values) {
    std::set<int> numbers;
    for (const auto& [key, value] : values) {
        int number = 0;
        if (!key.starts_with(workspacePrefix)) continue;
        const char* end = key.data() + key.size();
        const auto [rest, error] = std::from_chars(key.data() + workspacePrefix.size(), end, number);
        if (error == std::errc() && rest != end && *rest == '/') numbers.insert(number);
    }
    return numbers;
}

}  // namespace

bool XfceDesktopPicture::answers(const Bus& bus) {
    if (!bus) return false;
    try {
        callStore(bus, "ListChannels", nullptr);
        return true;
    } catch (const std::runtime_error&) {
        logWarning("The settings of the XFCE desktop cannot be reached.", "wallpaper",
                   std::current_exception());
        return false;
    }
}

void XfceDesktopPicture::setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                                         const DesktopImageOptions& options) {
    requireReadable(file);
    const DesktopImageOptions before = stateOf(screen);
    DesktopImageOptions wanted = options;
    // Those alone that can be put back: another one may come at any moment.
    for (const int workspace : workspacesIn(before)) {
        wanted.emplace(keyOf(workspace, imageKey), variantText(g_variant_new_string(file.c_str())));
        if (!options.empty()) continue;
        for (const StyleKey& key : styleKeys) {
            const std::string name = keyOf(workspace, key.name);
            const bool suits = std::ranges::count(key.suiting, before.at(name)) > 0;
            if (!suits) wanted.emplace(name, key.suiting.front());
        }
    }
    try {
        store(screen, wanted);
    } catch (const std::runtime_error&) {
        const std::exception_ptr failure = std::current_exception();
        try {
            store(screen, before);
        } catch (const std::runtime_error&) {
            logWarning("The former desktop picture could not be put back.", "wallpaper",
                       std::current_exception());
        }
        std::rethrow_exception(failure);
    }
}

std::optional<std::filesystem::path> XfceDesktopPicture::desktopImage(const Screen& screen) {
    try {
        const auto state = stateOf(screen);
        const auto found = state.find(keyOf(shownWorkspace(), imageKey));
        return found == state.end() ? std::nullopt : existingFile(stringOfVariantText(found->second));
    } catch (const std::runtime_error&) {
        logWarning("The present desktop picture could not be found out.", "wallpaper",
                   std::current_exception());
        return std::nullopt;
    }
}

std::optional<std::filesystem::path> XfceDesktopPicture::captureDesktopImage(const Screen& screen) {
    auto file = desktopImage(screen);
    return file ? file : root_.captureDesktopImage(screen);
}

/// The workspaces that show the known file are left out: they follow the file that is set.
DesktopImageOptions XfceDesktopPicture::desktopImageOptions(const Screen& screen) {
    const auto file = desktopImage(screen);
    DesktopImageOptions options = stateOf(screen);
    std::erase_if(options, [&](const auto& option) {
        return file && option.first.ends_with(imageKey) &&
               stringOfVariantText(option.second) == file->string();
    });
    return options;
}

/// Of the workspaces that the window manager has, and of those that the desktop remembers.
DesktopImageOptions XfceDesktopPicture::stateOf(const Screen& screen) const {
    const auto values = valuesIn(bus_, folderOf(screen));
    DesktopImageOptions state;
    const auto put = [&](const std::string& key) {
        const auto found = values.find(key);
        state.emplace(key, found == values.end() ? "" : variantText(found->second.get()));
    };
    std::set<int> numbers = workspacesIn(values);
    for (int number = 0; number < workspaces().count; ++number) numbers.insert(number);
    for (const int workspace : numbers) {
        put(keyOf(workspace, imageKey));
        for (const StyleKey& key : styleKeys) put(keyOf(workspace, key.name));
    }
    return state;
}

/// The desktop can show one workspace's pictures on all of them, and does so unless it is told not to.
int XfceDesktopPicture::shownWorkspace() const {
    const auto values = valuesIn(bus_, "/backdrop/");
    const auto isSingle = values.find("single-workspace-mode");
    const bool isOne = isSingle == values.end() ||
                       !g_variant_is_of_type(isSingle->second.get(), G_VARIANT_TYPE_BOOLEAN) ||
                       g_variant_get_boolean(isSingle->second.get());
    if (!isOne) return workspaces().shown;
    const auto number = values.find("single-workspace-number");
    if (number == values.end() || !g_variant_is_of_type(number->second.get(), G_VARIANT_TYPE_INT32)) return 0;
    return g_variant_get_int32(number->second.get());
}

void XfceDesktopPicture::store(const Screen& screen, const DesktopImageOptions& values) const {
    const DesktopImageOptions present = stateOf(screen);
    for (const auto& [key, text] : values) {
        const std::string property = folderOf(screen) + key;
        const auto found = present.find(key);
        if (found != present.end() ? found->second == text : text.empty()) continue;
        if (text.empty()) {
            callStore(bus_, "ResetProperty", g_variant_new("(ssb)", channel, property.c_str(), FALSE));
        } else {
            callStore(bus_, "SetProperty",
                      g_variant_new("(ssv)", channel, property.c_str(), variantOfText(text).get()));
        }
    }
}

}  // namespace quillmar
