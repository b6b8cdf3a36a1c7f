#include "ui/ViewModule.h"

#include <dlfcn.h>

#include "base/Localization.h"

namespace quillmar {
namespace {

class NoViews final : public AppLocalizableError {
public:
    explicit NoViews(const char* reason) : reason_(reason ? reason : "") {}
    std::string message(GeneralLanguage language) const override {
        return localized("A part of Quillmar is missing or does not fit it: %@"_key, language, {reason_});
    }

private:
    std::string reason_;
};

}  // namespace

/// It stays loaded: GTK keeps the types that it registers.
void* viewFunction(const std::filesystem::path& file, const char* name) {
    void* module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* function = module ? ::dlsym(module, name) : nullptr;
    if (!function) throw NoViews(::dlerror());
    return function;
}

}  // namespace quillmar
