#include "async/TaskScope.h"

namespace quillmar {

TaskScope::~TaskScope() {
    // Taken out first: a frame's destructors may look at the scope's other tasks.
    std::list<Entry> ending = std::move(entries_);
    entries_.clear();
    for (Entry& entry : ending) {
        entry.next.cancel();
        entry.state->stop.request_stop();
    }
    while (!ending.empty()) {
        const auto state = ending.front().state;
        ending.pop_front();
        state->abandon();
    }
}

void TaskScope::spawn(Task<void> task) {
    add(reportingFailure(std::move(task)), std::make_shared<detail::TaskState<void>>());
}

void TaskScope::cancelAll() {
    for (Entry& entry : entries_) entry.state->stop.request_stop();
}

void TaskScope::add(Task<void> task, std::shared_ptr<detail::TaskStateBase> state) {
    entries_.push_back({std::move(task), std::move(state), {}});
    const Position entry = std::prev(entries_.end());
    entry->next = Scheduled(loop_, [this, entry] {
        entry->task = [](TaskScope* scope, Position at, Task<void> body) -> Task<void> {
            co_await std::move(body);
            at->state->finish();
            at->next = Scheduled(scope->loop_, [scope, at] { scope->entries_.erase(at); });
        }(this, entry, std::move(entry->task));
        entry->task.start({&loop_, entry->state->stop.get_token()});
    });
}

Task<void> TaskScope::reportingFailure(Task<void> task) {
    const TaskContext context = co_await currentContext();
    try {
        co_await std::move(task);
    } catch (const CancellationError&) {
        // The end that was asked for.
    } catch (...) {
        context.loop->taskFailed(std::current_exception());
    }
}

}  // namespace quillmar
