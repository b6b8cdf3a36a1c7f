#pragma once
#include <span>
#include <string_view>

#include "base/Localization.h"

namespace quillmar {

// What the panes of the picture services offer. The values are stored, and sent, as they stand.

/// A value with the text that a person chooses it by.
struct LabeledValue {
    TextKey label;
    std::string_view value;
};

/// Six digits without "#".
std::span<const std::string_view> wallhavenColors();
/// "16x9".
std::span<const std::string_view> wallhavenRatios();
/// "1920x1080".
std::span<const std::string_view> wallhavenResolutions();
/// Language and country, "en-ww".
std::span<const LabeledValue> bingMarkets();
/// Language and country, "en-US".
std::span<const LabeledValue> windowsSpotlightLocales();

}  // namespace quillmar
