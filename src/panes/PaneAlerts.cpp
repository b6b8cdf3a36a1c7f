#include "panes/PaneAlerts.h"

namespace quillmar {

Task<void> tell(AlertPresenting& alerts, std::string title, std::string text, GeneralLanguage language,
                Alert::Style style) {
    Alert alert{.style = style, .title = std::move(title), .text = std::move(text)};
    alert.buttons = {localized("OK"_key, language)};
    co_await alerts.runModal(std::move(alert));
}

Task<void> tell(AlertPresenting& alerts, TextKey title, std::string text, GeneralLanguage language) {
    co_await tell(alerts, localized(title, language), std::move(text), language, Alert::Style::warning);
}

Task<bool> confirm(AlertPresenting& alerts, TextKey title, TextKey text, TextKey button,
                   GeneralLanguage language) {
    Alert alert{.title = localized(title, language), .text = localized(text, language)};
    // Return, pressed in haste, does no harm.
    alert.buttons = {localized("Cancel"_key, language), localized(button, language)};
    alert.closingButton = 0;
    co_return co_await alerts.runModal(std::move(alert)) == 1;
}

}  // namespace quillmar
