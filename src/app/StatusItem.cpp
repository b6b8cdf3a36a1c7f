#include "app/StatusItem.h"

namespace quillmar {
namespace {

std::function<void()> settingsOpener(SettingsWindowing* window) {
    if (!window) return {};
    return [window] { window->open({}); };
}

}  // namespace

StatusItem::StatusItem(const Ports& ports, Subsystems& subsystems, Ways ways)
    : controller_({.loop = ports.loop,
                   .notifications = subsystems.notifications,
                   .settingsModel = subsystems.settingsModel,
                   .icon = ports.statusIcon,
                   .alerts = ports.alerts,
                   .displays = subsystems.displays,
                   .pictures = subsystems.pictureMemory,
                   .carryOut = std::move(ways.carryOut),
                   .quit = std::move(ways.quit),
                   .openSettings = settingsOpener(ports.settingsWindow)}) {}

}  // namespace quillmar
