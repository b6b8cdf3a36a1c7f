#pragma once
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "base/Url.h"

namespace quillmar {

/// The files that are not to be shown again by themselves. A value that costs nothing to copy, so that work
/// on other threads takes its own along; it knows the files by fingerprints, a hundred thousand in less than
/// a megabyte.
class BannedPictures {
public:
    BannedPictures() = default;
    /// Reads file URLs, one on a line.
    explicit BannedPictures(std::string_view text);

    /// False when it was there.
    bool add(const Url& fileURL);
    bool contains(const Url& fileURL) const;
    bool empty() const { return !fingerprints_; }

private:
    std::shared_ptr<const std::vector<std::uint64_t>> fingerprints_;  ///< sorted; null for none
};

}  // namespace quillmar
