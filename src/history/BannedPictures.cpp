#include "history/BannedPictures.h"

#include <algorithm>

#include "base/Hash.h"
#include "base/Text.h"

namespace quillmar {
namespace {

/// One for all spellings of a path.
std::uint64_t fingerprintOf(const Url& fileURL) { return fnv1a64(fileURL.standardized().string()); }

}  // namespace

BannedPictures::BannedPictures(std::string_view text) {
    std::vector<std::uint64_t> all;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        // Also as an editor leaves it.
        if (const auto url = Url::parse(trimmed(line))) all.push_back(fingerprintOf(*url));
    }
    std::ranges::sort(all);
    if (!all.empty()) fingerprints_ = std::make_shared<const std::vector<std::uint64_t>>(std::move(all));
}

bool BannedPictures::add(const Url& fileURL) {
    if (contains(fileURL)) return false;
    const std::uint64_t added = fingerprintOf(fileURL);
    // The copies that other threads hold stay as they are.
    auto all = fingerprints_ ? *fingerprints_ : std::vector<std::uint64_t>{};
    all.insert(std::ranges::upper_bound(all, added), added);
    fingerprints_ = std::make_shared<const std::vector<std::uint64_t>>(std::move(all));
    return true;
}

bool BannedPictures::contains(const Url& fileURL) const {
    return fingerprints_ && std::ranges::binary_search(*fingerprints_, fingerprintOf(fileURL));
}

}  // namespace quillmar
