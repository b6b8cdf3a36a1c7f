#include "linux/x11/X11Operations.h"

namespace quillmar {

namespace {

/// What is being done when the program ends is done to its end, unless the server hangs.
constexpr auto lastOperationLimit = std::chrono::milliseconds(500);

}  // namespace

X11Operations::~X11Operations() {
    for (const auto& known : interruptions_) {
        const auto interruption = known.lock();
        if (!interruption) continue;
        interruption->isLeftWithin(lastOperationLimit);
        interruption->interrupt();  // also what is only about to begin
    }
}

std::shared_ptr<X11Interruption> X11Operations::newInterruption() {
    std::erase_if(interruptions_, [](const auto& known) { return known.expired(); });
    auto interruption = std::make_shared<X11Interruption>();
    interruptions_.push_back(interruption);
    return interruption;
}

}  // namespace quillmar
