#include "platform/DesktopPictureError.h"

namespace quillmar {

std::string DesktopPictureError::message(GeneralLanguage language) const {
    switch (case_) {
        case Case::noAnswer:
            return localized("The picture of %@ could not be set: %@ did not answer."_key, language,
                             {screen_, who_});
        case Case::refused:
            return localized("The picture of %@ could not be set: %@ refused it (%@)."_key, language,
                             {screen_, who_, reason_});
        case Case::locked:
            return localized("The picture of %@ could not be set: the desktop's setting %@ is locked."_key,
                             language, {screen_, who_});
        case Case::rearranged:
            return localized(
                "The picture of %@ could not be set while the displays were being rearranged."_key, language,
                {screen_});
        case Case::noRoom:
            return localized("The picture of %@ could not be set: %@ has no room for it."_key, language,
                             {screen_, who_});
        case Case::disconnected: break;
    }
    return localized("The display %@ is no longer connected."_key, language, {screen_});
}

}  // namespace quillmar
