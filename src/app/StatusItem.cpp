#include "app/StatusItem.h"

namespace quillmar {
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
                   .openSettings = std::move(ways.openSettings)}) {}

}  // namespace quillmar
