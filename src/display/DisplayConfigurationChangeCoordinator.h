#pragma once
#include <functional>
#include <optional>

#include "async/TaskScope.h"
#include "display/DisplayTopologySnapshot.h"

namespace quillmar {

/// How the application of the wallpapers went, as far as a change of the arrangement needs to know it.
struct TopologyApplyResult {
    bool hasFailure = false;
    std::size_t failureCount = 0;
};

/// Notices when the arrangement of the displays really changed, and has the wallpapers applied to it: once
/// for a burst of changes, and not while the Lock Screen owns the desktop. Main thread only.
class DisplayConfigurationChangeCoordinator {
public:
    struct Delays {
        Duration settle = std::chrono::milliseconds(500);
        Duration deferredCheck = std::chrono::seconds(1);
    };
    struct Actions {
        std::function<bool()> isWallpaperApplicationSuppressed;
        std::function<Task<TopologyApplyResult>()> applyWallpaper;
        std::function<void(const TopologyApplyResult&)> reportFailure;
        std::function<void()> topologyDidChange;
    };
    DisplayConfigurationChangeCoordinator(MainLoop& loop, const DisplayProviding& displayProvider,
                                          Actions actions, Delays delays);

    /// From here on changes count. What came before is taken as known.
    void start();
    void stop();
    /// To be called for every change of the screen parameters, however small.
    void screenParametersDidChange();
    bool isMonitoring() const { return isMonitoring_; }

private:
    Task<void> settle();
    Task<void> applyWhenAllowed();
    Task<void> reapply();
    DisplayTopologySnapshot snapshot() const;

    const DisplayProviding& displayProvider_;
    Actions actions_;
    Delays delays_;
    std::optional<DisplayTopologySnapshot> lastHandledTopology_;
    TaskHandle<void> settleTask_;
    TaskHandle<void> deferredApplyTask_;
    bool isMonitoring_ = false;
    TaskScope tasks_;
};

}  // namespace quillmar
