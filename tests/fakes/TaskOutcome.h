#pragma once
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>

#include "async/TaskScope.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {

/// How far a task has come: `text` is "waiting", "done", or the words of its failure, "cancelled" among them.
template <class T>
struct TaskOutcome {
    std::string text = "waiting";
    std::optional<std::conditional_t<std::is_void_v<T>, std::monostate, T>> value;
};

template <class T>
Task<void> keepOutcome(Task<T> task, std::shared_ptr<TaskOutcome<T>> outcome) {
    try {
        if constexpr (std::is_void_v<T>) {
            co_await std::move(task);
        } else {
            outcome->value.emplace(co_await std::move(task));
        }
        outcome->text = "done";
    } catch (const std::exception& error) {
        outcome->text = error.what();
    }
}

/// Starts the task and goes on as far as it goes without time passing; what comes later the outcome knows
/// too.
template <class T>
std::shared_ptr<TaskOutcome<T>> outcomeOf(VirtualLoop& loop, TaskScope& tasks, Task<T> task) {
    auto outcome = std::make_shared<TaskOutcome<T>>();
    tasks.spawn(keepOutcome(std::move(task), outcome));
    loop.settle();
    return outcome;
}

}  // namespace quillmar
