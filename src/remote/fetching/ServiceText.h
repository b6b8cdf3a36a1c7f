#pragma once
#include <string>
#include <string_view>

namespace quillmar {

/// A text of a service as it may be kept and shown: UTF-8 without control characters, of 1,024 bytes at
/// most.
std::string boundedText(std::string_view text);

/// What a fragment of HTML says: without tags, its entities resolved, its blanks as a page shows them.
std::string textOfHTML(std::string_view fragment);

/// The parts that are not empty, as the caption of a picture has them.
std::string captionOf(std::initializer_list<std::string_view> parts);

}  // namespace quillmar
