#include "linux/desktop/XfceDesktopPicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

#include "diagnostics/Log.h"
#include "linux/desktop/DesktopCall.h"
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

constexpr const char* storeName = "xfconf";

Task<std::shared_ptr<GVariant>> callStore(Bus bus, const char* method, GVariant* arguments,
                                          std::string connector) {
    return callDesktop(std::move(bus),
                       {"org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", method, arguments},
                       storeName, std::move(connector));
}

std::string folderOf(const std::string& connector) { return "/backdrop/screen0/monitor" + connector + "/"; }

std::string keyOf(int workspace, const char* name) {
    return fmt::format("{}{}/{}", workspacePrefix, workspace, name);
}

/// The values below `folder` that are set, by their names in it.
Task<std::map<std::string, Owned<GVariant>>> valuesIn(Bus bus, std::string folder, std::string connector) {
    std::map<std::string, Owned<GVariant>> values;
    std::shared_ptr<GVariant> answer;
    try {
        const std::string base = folder.substr(0, folder.size() - 1);
        answer = co_await callStore(bus, "GetAllProperties", g_variant_new("(ss)", channel, base.c_str()),
                                    connector);
    } catch (const BusRefusal& error) {
        // The store's word for "nothing is set here".
        if (!error.name().ends_with("NotFound")) throw refusal(error, storeName, connector);
        co_return values;
    }
    if (!g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(a{sv})"))) {
        throw DesktopPictureError(DesktopPictureError::Case::noAnswer, storeName, connector);
    }
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
    co_return values;
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

Task<bool> XfceDesktopPicture::answers(Bus bus) {
    try {
        co_await callOnBus(bus, {.destination = "org.xfce.Xfconf",
                                 .path = "/org/xfce/Xfconf",
                                 .interface = "org.xfce.Xfconf",
                                 .method = "ListChannels",
                                 .arguments = nullptr,
                                 .timeoutMilliseconds = desktopAnswerMilliseconds,
                                 .startsProgram = true});
        co_return true;
    } catch (const BusRefusal&) {
        logWarning("The settings of the XFCE desktop cannot be reached.", "wallpaper",
                   std::current_exception());
        co_return false;
    }
}

Task<void> XfceDesktopPicture::setDesktopImage(DesktopImage image, Screen screen,
                                               DesktopImageOptions options) {
    const TaskLock::Hold turn = co_await order_.acquire();
    co_await requireReadable(windowSystem_.executor(), image.file, storeName, screen.connector);
    DesktopImageOptions before = co_await stateOf(screen.connector);
    DesktopImageOptions wanted = options;
    // Those alone that can be put back: another one may come at any moment.
    for (const int workspace : workspacesIn(before)) {
        wanted.emplace(keyOf(workspace, imageKey), variantText(g_variant_new_string(image.file.c_str())));
        if (!options.empty()) continue;
        for (const StyleKey& key : styleKeys) {
            const std::string name = keyOf(workspace, key.name);
            const bool suits = std::ranges::count(key.suiting, before.at(name)) > 0;
            if (!suits) wanted.emplace(name, key.suiting.front());
        }
    }
    co_await store(screen.connector, std::move(before), std::move(wanted));
}

Task<PresentDesktopImage> XfceDesktopPicture::desktopImage(Screen screen) {
    const TaskLock::Hold turn = co_await order_.acquire();
    co_return PresentDesktopImage{.file = co_await presentFile(screen.connector)};
}

Task<std::optional<std::filesystem::path>> XfceDesktopPicture::captureDesktopImage(Screen screen) {
    auto present = co_await desktopImage(screen);
    if (present.file) co_return present.file;
    co_return co_await root_.captureDesktopImage(screen);
}

/// The workspaces that show the known file are left out: they follow the file that is set.
Task<DesktopImageOptions> XfceDesktopPicture::desktopImageOptions(Screen screen) {
    const TaskLock::Hold turn = co_await order_.acquire();
    const auto file = co_await presentFile(screen.connector);
    DesktopImageOptions options = co_await stateOf(screen.connector);
    std::erase_if(options, [&](const auto& option) {
        return file && option.first.ends_with(imageKey) &&
               stringOfVariantText(option.second) == file->string();
    });
    co_return options;
}

Task<std::optional<std::filesystem::path>> XfceDesktopPicture::presentFile(std::string connector) {
    const DesktopImageOptions state = co_await stateOf(connector);
    const auto found = state.find(keyOf(co_await shownWorkspace(connector), imageKey));
    if (found == state.end()) co_return std::nullopt;
    co_return co_await existingFile(windowSystem_.executor(), stringOfVariantText(found->second));
}

/// Of the workspaces that the window manager has, and of those that the desktop remembers.
Task<DesktopImageOptions> XfceDesktopPicture::stateOf(std::string connector) {
    const auto values = co_await valuesIn(bus_, folderOf(connector), connector);
    const Workspaces present = co_await windowSystem_.run(connector, &workspaces);
    DesktopImageOptions state;
    const auto put = [&](const std::string& key) {
        const auto found = values.find(key);
        state.emplace(key, found == values.end() ? "" : variantText(found->second.get()));
    };
    std::set<int> numbers = workspacesIn(values);
    for (int number = 0; number < present.count; ++number) numbers.insert(number);
    for (const int workspace : numbers) {
        put(keyOf(workspace, imageKey));
        for (const StyleKey& key : styleKeys) put(keyOf(workspace, key.name));
    }
    co_return state;
}

/// The desktop can show one workspace's pictures on all of them, and does so unless it is told not to.
Task<int> XfceDesktopPicture::shownWorkspace(std::string connector) {
    const auto values = co_await valuesIn(bus_, "/backdrop/", connector);
    const auto isSingle = values.find("single-workspace-mode");
    const bool isOne = isSingle == values.end() ||
                       !g_variant_is_of_type(isSingle->second.get(), G_VARIANT_TYPE_BOOLEAN) ||
                       g_variant_get_boolean(isSingle->second.get());
    if (!isOne) {
        const Workspaces present = co_await windowSystem_.run(connector, &workspaces);
        co_return present.shown;
    }
    const auto number = values.find("single-workspace-number");
    if (number == values.end() || !g_variant_is_of_type(number->second.get(), G_VARIANT_TYPE_INT32))
        co_return 0;
    co_return g_variant_get_int32(number->second.get());
}

Task<void> XfceDesktopPicture::store(std::string connector, DesktopImageOptions present,
                                     DesktopImageOptions wanted) {
    for (const auto& [key, text] : wanted) {
        const std::string property = folderOf(connector) + key;
        const auto found = present.find(key);
        if (found != present.end() ? found->second == text : text.empty()) continue;
        try {
            if (text.empty()) {
                co_await callStore(bus_, "ResetProperty",
                                   g_variant_new("(ssb)", channel, property.c_str(), FALSE), connector);
            } else {
                co_await callStore(
                    bus_, "SetProperty",
                    g_variant_new("(ssv)", channel, property.c_str(), variantOfText(text).get()), connector);
            }
        } catch (const BusRefusal& error) {
            throw refusal(error, storeName, connector);
        }
    }
}

}  // namespace quillmar
