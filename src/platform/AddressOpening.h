#pragma once
#include "async/Task.h"
#include "base/Url.h"

namespace quillmar {

/// Shows web pages and files in whatever program the user has for them. Main thread.
class AddressOpening {
public:
    virtual ~AddressOpening() = default;
    /// False where no program takes it.
    virtual Task<bool> open(Url address) = 0;
};

}  // namespace quillmar
