#pragma once
#include <memory>

#include "linux/desktop/BackgroundSettings.h"
#include "linux/desktop/SpannedComposition.h"
#include "linux/desktop/SpannedState.h"
#include "linux/picture/LinuxPictureRendering.h"

namespace quillmar {

/// A desktop with one picture for all monitors, which is composed from a picture for each. A monitor without
/// a picture of ours keeps its part of the desktop's own one; the options are that one's settings.
class SpannedDesktopPicture final : public DesktopPicturing {
public:
    /// The composed picture and what it consists of are kept in `folder`, which is made when needed and holds
    /// nothing else. `root`, which must outlive this, captures the picture that no file is known for.
    SpannedDesktopPicture(std::unique_ptr<BackgroundSettings> settings, std::filesystem::path folder,
                          DesktopPicturing& root);

    void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                         const DesktopImageOptions& options) override;
    std::optional<std::filesystem::path> desktopImage(const Screen& screen) override;
    std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) override;
    DesktopImageOptions desktopImageOptions(const Screen& screen) override;
    /// Composes anew for monitors that are arranged in another way than when the picture was made.
    void recallDesktopImage(const Screen& screen) override;

private:
    SpannedState presentState() const;
    std::vector<SpannedPart> partsOf(const SpannedState& state) const;
    void showComposed(SpannedState state, const std::vector<SpannedPart>& parts);
    void drawOwnParts(const SpannedState& state, std::vector<SpannedPart>& parts) const;
    void keep(SpannedState state);
    void removeAllBut(const std::filesystem::path& composed) const;

    std::unique_ptr<BackgroundSettings> settings_;
    std::filesystem::path folder_;
    DesktopPicturing& root_;
    LinuxPictureRendering rendering_;
    SpannedState state_;
};

}  // namespace quillmar
