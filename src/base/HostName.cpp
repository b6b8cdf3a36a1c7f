#include "base/HostName.h"

#include "base/Text.h"

namespace quillmar {

bool isLocalHostName(std::string_view name) {
    const std::string lower = lowercased(name);
    return lower == "localhost" || lower.ends_with(".localhost") || lower.ends_with(".local") ||
           !lower.contains('.');
}

}  // namespace quillmar
