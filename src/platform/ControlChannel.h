#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "async/Task.h"

namespace quillmar {

/// A command line for the running program: what stands behind the program's name, and the folder that
/// relative paths start from.
struct ControlCall {
    std::vector<std::string> arguments;
    std::string workingDirectory;
};

/// What a command says and how it ended: 0 done, 1 failed, 2 not understood.
struct ControlReply {
    int status = 0;
    std::string output;
    std::string errors;
};

/// The running program's ear for commands. Main thread.
class ControlServing {
public:
    virtual ~ControlServing() = default;
    /// Answers calls with `handler` from now on. A failure of it is answered as a failed command.
    virtual void serve(std::function<Task<ControlReply>(ControlCall)> handler) = 0;
};

/// The way to the running program of this session. Main thread.
class ControlCalling {
public:
    virtual ~ControlCalling() = default;
    /// Sends the call and waits for its answer, however long the command takes. Nothing when no program is
    /// there to answer.
    virtual Task<std::optional<ControlReply>> call(ControlCall call) = 0;
};

}  // namespace quillmar
