#pragma once

namespace quillmar {

/// Carries out the one order that comes over `channel`, and answers. Every end of it is an answer, or the end
/// of the process.
void runRenderJob(int channel);

}  // namespace quillmar
