#pragma once
#include <string>
#include <string_view>

#include "base/BundleInfo.h"
#include "settings/records/AppSettings.h"

namespace quillmar {

/// The document as text: sorted keys, pretty. Throws `JsonRecordError` for what JSON cannot hold.
std::string encodeSettings(const AppSettings& settings);
/// Throws `SettingsSchemaError` for a document of another version, whatever else it holds, and
/// `JsonRecordError` with the place and the reason for one that cannot be read. Keys that are not known are
/// ignored.
AppSettings decodeSettings(std::string_view text);
/// The document of a first run. Identities in it are fresh, so two of them are not equal.
AppSettings defaultSettings(const BundleInfo& bundle);

/// Throws `JsonRecordError`.
WallpaperMode decodeWallpaperMode(std::string_view text);

}  // namespace quillmar
