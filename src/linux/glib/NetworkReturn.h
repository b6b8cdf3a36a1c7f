#pragma once
#include <functional>

#include "linux/glib/Signal.h"

namespace quillmar {

/// Hears when the machine has a way to a network again after it had none. Main thread.
class NetworkReturn {
public:
    explicit NetworkReturn(std::function<void()> handler);

private:
    bool isAvailable_;
    Signal changed_;
};

}  // namespace quillmar
