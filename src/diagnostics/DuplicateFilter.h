#pragma once
#include <map>
#include <string>

#include "async/MainLoop.h"

namespace quillmar {

/// Lets equal reports pass once a minute. It remembers at most 1000 of them, so that a storm of different
/// errors costs no memory; beyond that the oldest is forgotten.
class DuplicateFilter {
public:
    bool admits(const std::string& fingerprint, TimePoint now);

private:
    std::map<std::string, TimePoint> recent_;  ///< fingerprint to the moment when it last passed
};

}  // namespace quillmar
