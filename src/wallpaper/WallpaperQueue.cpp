#include "wallpaper/WallpaperQueue.h"

#include <algorithm>
#include <iterator>

namespace quillmar {

void WallpaperTicket::deliver(WallpaperDisplayApplyResult result) {
    std::string displayID = result.displayID;
    results.insert_or_assign(std::move(displayID), std::move(result));
    if (results.size() == displayIDs.size()) answer();
}

void WallpaperTicket::answer() {
    if (std::exchange(isAnswered, true)) return;
    for (const std::string& id : displayIDs) {
        if (const auto found = results.find(id); found != results.end()) {
            batch.displays.push_back(std::move(found->second));
        }
    }
    answered.resumeAll();
}

Task<WallpaperApplyBatchResult> WallpaperTicket::wait(std::shared_ptr<WallpaperTicket> ticket) {
    if (ticket->displayIDs.empty()) ticket->answer();
    while (!ticket->isAnswered) co_await ticket->answered.wait();
    co_return std::move(ticket->batch);
}

void WallpaperQueue::add(const std::string& displayID, WallpaperWork work) {
    const auto [line, isNew] = lines_.try_emplace(displayID);
    auto* pass = std::get_if<WallpaperPass>(&work);
    auto* last = line->second.empty() ? nullptr : std::get_if<WallpaperPass>(&line->second.back());
    // Only the last in line may take another in: whatever stands between must keep its place.
    if (pass && last && last->reason == pass->reason) {
        std::ranges::move(pass->tickets, std::back_inserter(last->tickets));
    } else {
        line->second.push_back(std::move(work));
    }
    if (isNew) tasks_.spawn(drain(displayID));
}

Task<void> WallpaperQueue::drain(std::string displayID) {
    std::deque<WallpaperWork>& line = lines_.at(displayID);
    while (!line.empty()) {
        WallpaperWork work = std::move(line.front());
        line.pop_front();
        co_await worker_(displayID, std::move(work));
    }
    lines_.erase(displayID);
}

}  // namespace quillmar
