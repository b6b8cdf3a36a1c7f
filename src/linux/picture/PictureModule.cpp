#include "linux/picture/PictureModule.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace quillmar {

std::unique_ptr<PictureDecoder> PictureModule::open(int descriptor) {
    {
        const std::lock_guard lock(mutex_);
        if (!function_) {
            // Found through the program's own run path: beside it, or in its library folder.
            void* module = ::dlopen("quillmar-vips.so", RTLD_NOW | RTLD_LOCAL);
            void* function = module ? ::dlsym(module, "quillmarOpenPicture") : nullptr;
            if (!function) throw std::runtime_error(std::string("No picture decoders: ") + ::dlerror());
            function_ = reinterpret_cast<decltype(function_)>(function);
        }
    }
    return std::unique_ptr<PictureDecoder>(function_(descriptor));
}

}  // namespace quillmar
