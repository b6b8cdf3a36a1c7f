#pragma once
#include <optional>
#include <stdexcept>
#include <string>

#include "async/TaskScope.h"
#include "base/Localization.h"
#include "desktop/Desktop.h"
#include "linux/glib/GlibMainLoop.h"

namespace quillmar {

/// A main loop that is turned until a task has ended.
class WaitingLoop {
public:
    template <class T>
    T await(Task<T> task) {
        Outcome<T> outcome;
        tasks_.spawn(keep(std::move(task), &outcome));
        if (!turnUntil([&] { return outcome.hasEnded; })) throw std::logic_error("the task did not end");
        if (outcome.failure) std::rethrow_exception(outcome.failure);
        if constexpr (!std::is_void_v<T>) return *std::move(outcome.value);
    }
    /// The failure of a task, in English.
    template <class T>
    std::string failureOf(Task<T> task) {
        try {
            await(std::move(task));
        } catch (const AppLocalizableError& error) {
            return error.message(GeneralLanguage::english);
        }
        return "no failure";
    }
    MainLoop& loop() { return loop_; }

private:
    template <class T>
    struct Outcome {
        std::optional<std::conditional_t<std::is_void_v<T>, bool, T>> value;
        std::exception_ptr failure;
        bool hasEnded = false;
    };
    template <class T>
    static Task<void> keep(Task<T> task, Outcome<T>* outcome) {
        try {
            if constexpr (std::is_void_v<T>) {
                co_await std::move(task);
            } else {
                outcome->value.emplace(co_await std::move(task));
            }
        } catch (...) {
            outcome->failure = std::current_exception();
        }
        outcome->hasEnded = true;
    }

    GlibMainLoop loop_;
    TaskScope tasks_{loop_};
};

}  // namespace quillmar
