#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "remote/services/RemotePicture.h"

namespace quillmar {

/// What is known of a picture as an XMP packet, which is what image viewers read.
std::string xmpPacket(const PictureCredit& credit);

/// The bytes of the file with the packet in its place. Nothing for a format that is not JPEG or PNG, and for
/// a file that has such a packet of its own: there the packet belongs into a file beside it.
std::optional<std::string> withXmp(std::string_view file, const std::string& packet);

/// "jpg" or "png", as the bytes begin; empty for all else.
std::string_view extensionOf(std::string_view file);

}  // namespace quillmar
