#pragma once
#include "platform/AddressOpening.h"

namespace quillmar {

/// Addresses and files, with the program that the desktop has set for them.
class GioAddresses final : public AddressOpening {
public:
    Task<bool> open(Url address) override;
};

}  // namespace quillmar
