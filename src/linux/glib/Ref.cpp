#include "linux/glib/Ref.h"

#include <stdexcept>

#include "async/Cancellation.h"

namespace quillmar {

void throwIfFailed(const Owned<GError>& error) {
    if (!error) return;
    if (g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) throw CancellationError();
    throw std::runtime_error(error->message);
}

}  // namespace quillmar
