#include "ui/SettingsWindowModule.h"

#include <dlfcn.h>

#include "base/Localization.h"

namespace quillmar {
namespace {

class NoSettingsWindow final : public AppLocalizableError {
public:
    explicit NoSettingsWindow(const char* reason) : reason_(reason ? reason : "") {}
    std::string message(GeneralLanguage language) const override {
        return localized("A part of Quillmar is missing or does not fit it: %@"_key, language, {reason_});
    }

private:
    std::string reason_;
};

/// It stays loaded: GTK keeps the types that it registers.
std::unique_ptr<SettingsWindowing> loadWindow(const std::filesystem::path& file) {
    void* module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* make = module ? ::dlsym(module, "quillmarMakeSettingsWindow") : nullptr;
    if (!make) throw NoSettingsWindow(::dlerror());
    return std::unique_ptr<SettingsWindowing>(
        reinterpret_cast<decltype(&quillmarMakeSettingsWindow)>(make)());
}

}  // namespace

void SettingsWindowModule::setContent(SettingsContent* content) {
    content_ = content;
    if (window_) window_->setContent(content);
}

void SettingsWindowModule::performClose() {
    if (window_) window_->performClose();
}

void SettingsWindowModule::open(const std::string& section) {
    if (!window_) {
        window_ = loadWindow(file_);
        window_->setContent(content_);
    }
    window_->open(section);
}

}  // namespace quillmar
