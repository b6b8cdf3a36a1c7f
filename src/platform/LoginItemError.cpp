#include "platform/LoginItemError.h"

namespace quillmar {

std::string LoginItemError::message(GeneralLanguage language) const {
    switch (case_) {
        case Case::foreignEntry:
            return localized("%@ starts another program and stays as it is."_key, language, {path_});
        case Case::noProgram:
            return localized("There is no program %@ to start at login."_key, language, {path_});
        case Case::noFolder: break;
    }
    return localized("Neither XDG_CONFIG_HOME nor HOME names a folder, so nothing can start at login."_key,
                     language);
}

}  // namespace quillmar
