#include "linux/glib/GioAddresses.h"

#include "linux/glib/Gio.h"

namespace quillmar {

Task<bool> GioAddresses::open(Url address) {
    const auto result = co_await gio(
        [text = address.string()](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
            g_app_info_launch_default_for_uri_async(text.c_str(), nullptr, cancellable, done, data);
        });
    co_return g_app_info_launch_default_for_uri_finish(result.get(), nullptr) != FALSE;
}

}  // namespace quillmar
