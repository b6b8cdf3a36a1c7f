#pragma once
#include "base/Localization.h"
#include "platform/AlertPresenting.h"

namespace quillmar {

/// Tells the user something, and waits until it was read.
Task<void> tell(AlertPresenting& alerts, std::string title, std::string text, GeneralLanguage language,
                Alert::Style style);
/// The same of a failure.
Task<void> tell(AlertPresenting& alerts, TextKey title, std::string text, GeneralLanguage language);

/// Asks before something is done; whether it shall be. The question's texts are keys of the string table.
Task<bool> confirm(AlertPresenting& alerts, TextKey title, TextKey text, TextKey button,
                   GeneralLanguage language);

}  // namespace quillmar
