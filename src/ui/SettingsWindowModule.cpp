#include "ui/SettingsWindowModule.h"

#include "ui/ViewModule.h"

namespace quillmar {

void SettingsWindowModule::setContent(SettingsContent* content) {
    content_ = content;
    if (window_) window_->setContent(content);
}

void SettingsWindowModule::performClose() {
    if (window_) window_->performClose();
}

void SettingsWindowModule::open(const std::string& section) {
    if (!window_) {
        void* make = viewFunction(file_, "quillmarMakeSettingsWindow");
        window_.reset(reinterpret_cast<decltype(&quillmarMakeSettingsWindow)>(make)());
        window_->setContent(content_);
    }
    window_->open(section);
}

}  // namespace quillmar
