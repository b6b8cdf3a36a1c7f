// A backup file: reading it ends with a document or with one of its errors, and what it holds can be applied
// and written.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/JsonError.h"
#include "settings/backup/SettingsBackupDocument.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillmar;
    try {
        const SettingsBackupDocument document = decodeBackup({reinterpret_cast<const char*>(data), size});
        const AppSettings settings = document.appliedTo(AppSettings{}, document.availableSections());
        const auto again = SettingsBackupDocument::make(settings, document.availableSections(),
                                                        document.appVersion, document.createdAt);
        if (again.contents != document.contents) std::abort();
        if (decodeBackup(encodeBackup(document)) != document) std::abort();
    } catch (const JsonRecordError&) {
    } catch (const SettingsBackupError&) {
    }
    return 0;
}
