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

/// Something that has changed, for whoever follows.
struct ControlEvent {
    std::string name;  ///< of the kind of event
    std::string json;  ///< an object on one line
    std::string text;  ///< the same for a person, in whole lines
};

/// The running program's ear for commands, and its voice. Main thread.
class ControlServing {
public:
    virtual ~ControlServing() = default;
    /// Answers calls with `handler` from now on. A failure of it is answered as a failed command.
    virtual void serve(std::function<Task<ControlReply>(ControlCall)> handler) = 0;
    /// Tells everybody who follows, and is done when the event is on its way: to a bus that does not take it,
    /// nothing more should be told meanwhile. Where nobody can follow, it is done at once.
    virtual Task<void> tell(ControlEvent event) = 0;
};

}  // namespace quillmar
