#pragma once
#include <string>

#include "linux/glib/Ref.h"

namespace quillmar {

/// The value as a text that says its type too: "'a'", "uint32 5". Sinks a floating value.
std::string variantText(GVariant* value);

/// Reads it back. Throws `std::runtime_error` for what is no such text.
Owned<GVariant> variantOfText(const std::string& text);

/// The string that the text stands for; empty when it stands for something else or is empty.
std::string stringOfVariantText(const std::string& text);

}  // namespace quillmar
