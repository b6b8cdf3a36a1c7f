#pragma once
#include <filesystem>

namespace quillmar {

/// The function of that name in the shared object with the views, which is loaded at the first call and stays
/// loaded: a program that nobody looks at does not carry it. Throws `AppLocalizableError` where it is
/// missing.
void* viewFunction(const std::filesystem::path& file, const char* name);

}  // namespace quillmar
