#pragma once
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "base/Url.h"

namespace quillmar {

/// The files of slideshows that turned out to be no pictures: each is tried again only after it was changed.
/// A value that costs nothing to copy, so that work on other threads takes its own along. It asks the file
/// system, so it belongs there.
class UnreadablePictures {
public:
    static constexpr std::size_t maximum = 10000;  ///< beyond it all are tried again

    /// As the file is now.
    UnreadablePictures with(const Url& fileURL) const;
    bool contains(const Url& fileURL) const;

private:
    using Files = std::map<std::string, std::filesystem::file_time_type>;  ///< when each was changed, by URL
    std::shared_ptr<const Files> files_;
};

}  // namespace quillmar
