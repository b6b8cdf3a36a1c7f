#pragma once
#include <memory>
#include <string>

#include "async/ThreadPool.h"
#include "platform/DesktopPicture.h"

namespace quillmar {

/// The one picture for all monitors of GNOME and its relatives, as GSettings keep it. The options are the
/// values of its keys as GVariant texts; an empty text stands for a value that the user has not set.
class GnomeBackground final : public SpannedDesktopPicturing {
public:
    /// Those of the schema; null when it is not installed. `pool` must outlive them.
    static Task<std::unique_ptr<GnomeBackground>> open(std::string schema, Executor& pool);

    Task<Present> present() override;
    /// With `options`: sets their values, and those that they do not name show `file`.
    Task<void> set(std::filesystem::path file, std::optional<DesktopImageOptions> options) override;

private:
    GnomeBackground(std::string schema, Executor& pool) : schema_(std::move(schema)), executor_(pool) {}

    std::string schema_;
    SerialExecutor executor_;  ///< the settings may have to be fetched from another process
};

}  // namespace quillmar
