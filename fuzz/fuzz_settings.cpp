// The settings document: whatever the file holds, reading it ends with a document or with one of its two
// errors, and a document that was read is written and read again unchanged.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/JsonError.h"
#include "settings/records/SettingsCodec.h"
#include "settings/records/SettingsSchemaError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillmar;
    try {
        const AppSettings settings = decodeSettings({reinterpret_cast<const char*>(data), size});
        if (decodeSettings(encodeSettings(settings)) != settings) std::abort();
    } catch (const JsonRecordError&) {
    } catch (const SettingsSchemaError&) {
    }
    return 0;
}
