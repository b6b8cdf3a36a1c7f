#include "diagnostics/DuplicateFilter.h"

#include <algorithm>

namespace quillmar {
namespace {

constexpr Duration suppressionInterval = std::chrono::seconds(60);
constexpr std::size_t rememberedCount = 1000;

}  // namespace

bool DuplicateFilter::admits(const std::string& fingerprint, TimePoint now) {
    std::erase_if(recent_, [&](const auto& passed) { return now - passed.second >= suppressionInterval; });
    if (recent_.contains(fingerprint)) return false;
    if (recent_.size() >= rememberedCount) {
        recent_.erase(
            std::ranges::min_element(recent_, {}, [](const auto& passed) { return passed.second; }));
    }
    recent_.emplace(fingerprint, now);
    return true;
}

}  // namespace quillmar
