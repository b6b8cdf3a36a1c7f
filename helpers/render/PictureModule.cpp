#include "render/PictureModule.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace quillmar {
namespace {

namespace fs = std::filesystem;

/// Beside the program, or a folder above it: tests and benchmarks stand below it. By its full path: a search
/// path in the program would be walked for each of its libraries at every start.
fs::path moduleFile() {
    constexpr const char* name = "quillmar-vips.so";
    const fs::path folder = fs::canonical("/proc/self/exe").parent_path();
    return fs::exists(folder / name) ? folder / name : folder.parent_path() / name;
}

template <class Function>
Function* symbol(void* module, const char* name) {
    void* found = module ? ::dlsym(module, name) : nullptr;
    if (!found) throw std::runtime_error(std::string("No picture decoders: ") + ::dlerror());
    return reinterpret_cast<Function*>(found);
}

}  // namespace

PictureModule::PictureModule(void (*isOutOfMemory)()) {
    void* module = ::dlopen(moduleFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    open_ = symbol<decltype(quillmarOpenPicture)>(module, "quillmarOpenPicture");
    if (!symbol<decltype(quillmarPrepare)>(module, "quillmarPrepare")(isOutOfMemory))
        throw std::runtime_error("The picture decoders could not be started.");
}

std::unique_ptr<PictureDecoder> PictureModule::open(int descriptor) const {
    return std::unique_ptr<PictureDecoder>(open_(descriptor));
}

}  // namespace quillmar
