#pragma once
#include <string>
#include <string_view>

namespace quillmar {

/// The distribution's name from the text of an os-release file, then the kernel: "Debian GNU/Linux 12
/// (bookworm), Linux 6.1.0-18-amd64". Without a name the kernel alone.
std::string operatingSystemVersionText(std::string_view osRelease, std::string_view kernelRelease);
/// That of the machine.
std::string operatingSystemVersionText();

}  // namespace quillmar
