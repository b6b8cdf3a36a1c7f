#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "base/BundleInfo.h"
#include "base/Url.h"

namespace quillmar {

/// Where this build learns of newer versions, and whose signature they bear. Of the bundle keys.
struct SoftwareUpdateConfiguration {
    enum class Environment { development, production };
    /// Why this build looks for none.
    enum class Problem {
        disabled,
        missingFeedURL,
        unsupportedFeedURL,
        missingPublicKey,
        invalidPublicKey,
        developmentKeyInProduction,
        unknownEnvironment
    };

    std::optional<Url> feedURL;
    std::optional<std::string> publicKey;  ///< Ed25519, 32 bytes in Base64
    std::optional<Environment> environment;
    std::optional<Problem> problem;

    static SoftwareUpdateConfiguration of(const BundleInfo& bundle);

    /// Whether updates may come from the address: over HTTPS, in development also from this machine itself.
    bool mayComeFrom(const Url& url) const;
};
constexpr auto enumNames(SoftwareUpdateConfiguration::Environment) {
    return std::to_array<std::string_view>({"development", "production"});
}
constexpr auto enumNames(SoftwareUpdateConfiguration::Problem) {
    return std::to_array<std::string_view>({"disabled", "missingFeedURL", "unsupportedFeedURL",
                                            "missingPublicKey", "invalidPublicKey",
                                            "developmentKeyInProduction", "unknownEnvironment"});
}

/// The key that development builds are tried with. Its other half is no secret.
extern const std::string_view developmentPublicKey;

}  // namespace quillmar
