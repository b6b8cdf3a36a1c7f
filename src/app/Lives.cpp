#include "app/Lives.h"

#include <algorithm>

namespace quillmar {

Task<void> Lives::start(bool inRecovery) {
    for (const Entry& entry : entries_) {
        if (inRecovery && !entry.life->runsInRecovery()) continue;
        co_await throwIfCancelled();
        started_.insert(entry.life);
        co_await entry.life->start();
    }
    co_await throwIfCancelled();
}

Task<void> Lives::stop() {
    for (Life* life : by(&Entry::stopPlace)) co_await life->stop();
}

void Lives::resume() {
    for (Life* life : by(&Entry::resumePlace)) {
        if (started_.contains(life)) life->resume();
    }
}

std::vector<Life*> Lives::by(int Entry::* place) const {
    std::vector<Entry> ordered = entries_;
    std::ranges::sort(ordered, {}, place);
    std::vector<Life*> lives;
    for (const Entry& entry : ordered) lives.push_back(entry.life);
    return lives;
}

}  // namespace quillmar
