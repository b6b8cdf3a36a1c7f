#include "linux/glib/NetworkReturn.h"

#include <gio/gio.h>

#include <utility>

namespace quillmar {

NetworkReturn::NetworkReturn(std::function<void()> handler)
    : isAvailable_(g_network_monitor_get_network_available(g_network_monitor_get_default()) != FALSE),
      changed_(Signal::connect<void, gboolean>(
          g_network_monitor_get_default(), "network-changed",
          [this, handler = std::move(handler)](GNetworkMonitor*, gboolean isAvailable) {
              // It tells every change of the routes.
              const bool wasAvailable = std::exchange(isAvailable_, isAvailable != FALSE);
              if (isAvailable_ && !wasAvailable) handler();
          })) {}

}  // namespace quillmar
