#include "loginitem/LoginItemService.h"

namespace quillmar {

Task<void> LoginItemService::refresh() { status_ = co_await registrar_.status(); }

Task<bool> LoginItemService::setEnabled(bool isWanted) {
    co_await refresh();
    errorMessage_.reset();
    if (isEnabled() == isWanted) co_return true;
    const GeneralLanguage language = settingsModel_.settings().general.language;
    try {
        co_await (isWanted ? registrar_.registerItem() : registrar_.unregister());
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        errorMessage_ = errorText(error, language);
    }
    co_await refresh();
    if (!errorMessage_ && isEnabled() != isWanted) {
        errorMessage_ = localized(
            "The desktop did not update the Quillmar login item. Try again or review it in the desktop's "
            "list of programs that start at login."_key,
            language);
    }
    co_return !errorMessage_;
}

std::optional<std::string> LoginItemService::difference() const {
    const GeneralSettings& general = settingsModel_.settings().general;
    if (!settingsModel_.canPersist()) return std::nullopt;
    if (!general.launchAtLogin) {
        if (!isEnabled()) return std::nullopt;
        return localized(
            "The session starts Quillmar at login all the same: \"quillmar general set "
            "--launchAtLogin=false\" takes it out."_key,
            general.language);
    }
    switch (status_) {
        case LoginItemRegistrationStatus::enabled: return std::nullopt;
        case LoginItemRegistrationStatus::requiresApproval:
            return localized("Quillmar is to start at login, but not on this desktop."_key, general.language);
        case LoginItemRegistrationStatus::notRegistered:
        case LoginItemRegistrationStatus::notFound: break;
    }
    return localized(
        "The session does not start Quillmar at login: \"quillmar general set --launchAtLogin\" enters it "
        "again."_key,
        general.language);
}

}  // namespace quillmar
