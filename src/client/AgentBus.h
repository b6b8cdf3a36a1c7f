#pragma once
#include <variant>

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

}  // namespace quillmar
