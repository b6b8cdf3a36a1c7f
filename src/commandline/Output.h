#pragma once
#include "base/Localization.h"
#include "platform/ControlChannel.h"

namespace quillmar {

/// Writes a reply to the standard output and the standard error. The exit status: the reply's, or 1 where the
/// output did not get through, which the standard error then says.
int printReply(const ControlReply& reply, GeneralLanguage language);

}  // namespace quillmar
