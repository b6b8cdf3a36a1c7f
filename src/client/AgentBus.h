#pragma once
#include <variant>

#include "base/Localization.h"
#include "platform/ControlChannel.h"

namespace quillmar {

/// Why a call was not answered.
enum class NoAnswer {
    nobody,         ///< no session bus, or nobody on it who is Quillmar
    unreachable,    ///< somebody who does not answer calls yet, or not any more
    otherVersion,   ///< a program that understands other calls
    endedMeanwhile  ///< the program ended before it was done
};

/// Sends the call to the running program and waits for its answer, however long the command takes.
std::variant<ControlReply, NoAnswer> askAgent(const ControlCall& call);

/// How a person follows what changes.
struct Following {
    bool wantsJson = false;
    GeneralLanguage language = GeneralLanguage::english;
};
/// As `askAgent`; then writes its output, and after it each change, to the standard output until the program
/// ends or nobody reads any more. A reader that is slow costs a bounded memory, and misses changes.
std::variant<ControlReply, NoAnswer> followAgent(const ControlCall& call, const Following& following);

}  // namespace quillmar
