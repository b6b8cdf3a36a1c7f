#pragma once
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// Why the desktop did not do what it was asked, told with what was tried on what.
class DesktopPictureError final : public AppLocalizableError {
public:
    enum class Case {
        noAnswer,      ///< `who` did not answer while the picture of `screen` was set or asked for
        refused,       ///< `who` refused it, for `reason`
        locked,        ///< the administrator has locked the desktop's setting `who`
        rearranged,    ///< the displays were moved again and again meanwhile
        disconnected,  ///< `screen` is no longer connected
        noRoom,        ///< the window server has no room for the picture
        noWay,         ///< nothing in this session takes a picture that anybody would see
    };
    DesktopPictureError(Case errorCase, std::string who, std::string screen, std::string reason = {})
        : case_(errorCase), who_(std::move(who)), screen_(std::move(screen)), reason_(std::move(reason)) {}

    Case errorCase() const { return case_; }
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    std::string who_;     ///< "xfconf", "Plasma", "the X server": a name
    std::string screen_;  ///< its connector; empty: all of them
    std::string reason_;
};

}  // namespace quillmar
