#pragma once
#include "base/BundleInfo.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// The variables that this process was started with.
Environment processEnvironment();

/// The bundle keys: of the file that `QUILLMAR_INFO` names, else of the one that lies beside the program
/// where it was built and in its data folder where it is installed. Throws `std::runtime_error`.
BundleInfo loadBundleInfo(const Environment& environment);

/// Where another program of this build lies: beside this one, else in the installed folder for programs that
/// nobody calls by hand. A path that is not there where it is missing.
std::filesystem::path companionProgram(std::string_view name);
/// Where the program lies that a person calls, seen from any program of this build.
std::filesystem::path calledProgram();

/// The folder of icon themes that this program's own icons lie in: beside it where it was built, else the
/// installed one.
std::filesystem::path iconThemesFolder();

}  // namespace quillmar
