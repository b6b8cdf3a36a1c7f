#pragma once
#include <set>
#include <vector>

#include "async/Task.h"

namespace quillmar {

/// What runs from the start of the program to its end. Main thread.
class Life {
public:
    virtual ~Life() = default;
    /// Whether it runs also when the settings could not be read.
    virtual bool runsInRecovery() const { return false; }
    /// Begins, after those before it in the list have begun; they go on meanwhile. A failure ends the start.
    virtual Task<void> start() = 0;
    /// Ends, whether it was started or not.
    virtual Task<void> stop() = 0;
    /// Goes on after a quit that was called off.
    virtual void resume() = 0;
};

/// The lives of a program. They start in the order of the list; they stop, and go on after a quit that was
/// called off, each by its place in that order of its own. The lives outlive the list.
class Lives {
public:
    struct Entry {
        Life* life;
        int stopPlace;
        int resumePlace;
    };
    explicit Lives(std::vector<Entry> entries) : entries_(std::move(entries)) {}

    /// Starts all, or `inRecovery` those that run then.
    /// Throws `CancellationError` between two of them when the task was cancelled.
    Task<void> start(bool inRecovery);
    Task<void> stop();
    /// Of those that were started.
    void resume();

private:
    std::vector<Life*> by(int Entry::* place) const;

    std::vector<Entry> entries_;
    std::set<const Life*> started_;
};

}  // namespace quillmar
