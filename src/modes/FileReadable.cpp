#include "modes/FileReadable.h"

#include <unistd.h>

namespace quillmar {

bool isReadableFile(const std::filesystem::path& file) { return ::access(file.c_str(), R_OK) == 0; }

}  // namespace quillmar
