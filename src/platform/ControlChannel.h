#pragma once
#include <functional>
#include <string>
#include <vector>

#include "async/Task.h"

namespace quillmar {

/// A command line for the running program. Arguments and folder are bytes: file names need not be UTF-8.
struct ControlCall {
    std::vector<std::string> arguments;  ///< what stands behind the program's name
    std::string workingDirectory;        ///< where relative paths start
    std::string version;                 ///< of the caller; empty where it does not say
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

}  // namespace quillmar
