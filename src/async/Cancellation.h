#pragma once
#include <exception>

namespace quillmar {

/// Thrown out of a wait whose task was cancelled. It is the end of that task and no failure of it.
class CancellationError : public std::exception {
public:
    const char* what() const noexcept override { return "cancelled"; }
};

}  // namespace quillmar
