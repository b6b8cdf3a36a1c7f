#include "platform/DesktopPictureError.h"

namespace quillmar {

std::string DesktopPictureError::message(GeneralLanguage language) const {
    const std::string screen = screen_.empty() ? localized("all displays"_key, language) : screen_;
    switch (case_) {
        case Case::noWay:
            return localized(
                "Quillmar cannot set pictures in this Wayland session yet: nobody would see the X11 root "
                "window."_key,
                language);
        case Case::noAnswer:
            return localized("The picture of %@ could not be set: %@ did not answer."_key, language,
                             {screen, who_});
        case Case::refused:
            return localized("The picture of %@ could not be set: %@ refused it (%@)."_key, language,
                             {screen, who_, reason_});
        case Case::locked:
            return localized("The picture of %@ could not be set: the desktop's setting %@ is locked."_key,
                             language, {screen, who_});
        case Case::rearranged:
            return localized(
                "The picture of %@ could not be set while the displays were being rearranged."_key, language,
                {screen});
        case Case::noRoom:
            return localized("The picture of %@ could not be set: %@ has no room for it."_key, language,
                             {screen, who_});
        case Case::disconnected: break;
    }
    return localized("The display %@ is no longer connected."_key, language, {screen});
}

}  // namespace quillmar
