#pragma once
#include <string>
#include <vector>

#include "platform/AddressOpening.h"

namespace quillmar {

class FakeAddresses final : public AddressOpening {
public:
    std::vector<std::string> opened;
    bool isRefusing = false;
    Task<bool> open(Url address) override {
        opened.push_back(address.string());
        co_return !isRefusing;
    }
};

}  // namespace quillmar
