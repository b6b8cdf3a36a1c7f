#include "linux/picture/PictureModule.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace quillmar {
namespace {

namespace fs = std::filesystem;

/// Beside the program, a folder above it (tests and benchmarks stand below it), or where it is installed. By
/// its full path: a search path in the program would be walked for each of its hundred libraries at every
/// start.
fs::path moduleFile() {
    constexpr const char* name = "quillmar-vips.so";
    const fs::path folder = fs::canonical("/proc/self/exe").parent_path();
    for (const fs::path& place : {folder / name, folder.parent_path() / name}) {
        if (fs::exists(place)) return place;
    }
    return folder.parent_path() / "lib/quillmar" / name;
}

}  // namespace

std::unique_ptr<PictureDecoder> PictureModule::open(int descriptor) {
    {
        const std::lock_guard lock(mutex_);
        if (!function_) {
            void* module = ::dlopen(moduleFile().c_str(), RTLD_NOW | RTLD_LOCAL);
            void* function = module ? ::dlsym(module, "quillmarOpenPicture") : nullptr;
            if (!function) throw std::runtime_error(std::string("No picture decoders: ") + ::dlerror());
            function_ = reinterpret_cast<decltype(function_)>(function);
        }
    }
    return std::unique_ptr<PictureDecoder>(function_(descriptor));
}

}  // namespace quillmar
