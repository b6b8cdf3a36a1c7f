#pragma once
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "async/TaskScope.h"
#include "history/PictureHistory.h"
#include "wallpaper/WallpaperBatch.h"

namespace quillmar {

struct WallpaperSettingsChangeInProgress;

/// Somebody's request, answered once every one of its displays is. The waiter and the line share it, so that
/// either may end first.
struct WallpaperTicket {
    std::vector<std::string> displayIDs;  ///< in the order of the answer
    std::map<std::string, WallpaperDisplayApplyResult> results;
    WallpaperApplyBatchResult batch;  ///< complete when `isAnswered`
    bool isAnswered = false;
    WaitList answered;

    /// Takes in the display's result, and answers when it is the last.
    void deliver(WallpaperDisplayApplyResult result);
    /// Answers with what there is.
    void answer();
    static Task<WallpaperApplyBatchResult> wait(std::shared_ptr<WallpaperTicket> ticket);
};

/// To apply what the settings say by then.
struct WallpaperPass {
    WallpaperApplyReason reason;
    std::vector<std::shared_ptr<WallpaperTicket>> tickets;
};

/// To show again what comes before or after what the display shows by then.
struct WallpaperReturn {
    HistoryStep step;
    std::shared_ptr<WallpaperTicket> ticket;
};

using WallpaperWork =
    std::variant<WallpaperPass, WallpaperReturn, std::shared_ptr<WallpaperSettingsChangeInProgress>>;

/// A line of work for each display: what is asked of one display happens in the order in which it was asked,
/// and no display waits for another's. Passes of one reason that meet at the end of a line are one pass. Main
/// thread.
class WallpaperQueue {
public:
    using Worker = std::function<Task<void>(std::string displayID, WallpaperWork work)>;
    WallpaperQueue(MainLoop& loop, Worker worker) : worker_(std::move(worker)), tasks_(loop) {}

    void add(const std::string& displayID, WallpaperWork work);
    /// True from the start of work until every line is empty.
    bool isWorking() const { return !lines_.empty(); }
    bool isWorking(const std::string& displayID) const { return lines_.contains(displayID); }

private:
    Task<void> drain(std::string displayID);

    Worker worker_;
    std::map<std::string, std::deque<WallpaperWork>> lines_;  ///< of the displays that are at work
    TaskScope tasks_;
};

}  // namespace quillmar
