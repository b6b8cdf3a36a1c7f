#include "settings/records/SettingsSchemaError.h"

namespace quillmar {

std::string SettingsSchemaError::message(GeneralLanguage language) const {
    return localized(
        "This settings file uses schema %lld, but this build of Quillmar requires schema %lld."_key, language,
        {stored_, required_});
}

}  // namespace quillmar
