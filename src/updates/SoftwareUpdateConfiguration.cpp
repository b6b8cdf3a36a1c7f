#include "updates/SoftwareUpdateConfiguration.h"

#include "base/Bytes.h"
#include "base/Enum.h"
#include "base/Text.h"
#include "updates/FileSignature.h"

namespace quillmar {

// Of the seed "Quillmar development updates key".
const std::string_view developmentPublicKey = "50evWwUZ0sI72AUITN0/UF13sPXJ0m8o2uBzHj7jTkw=";

namespace {

bool isOn(const std::optional<std::string>& value) {
    const std::string text = lowercased(value.value_or(""));
    return text == "1" || text == "true" || text == "yes";
}

std::optional<SoftwareUpdateConfiguration::Problem> problemOf(
    const SoftwareUpdateConfiguration& configuration) {
    using Problem = SoftwareUpdateConfiguration::Problem;
    const auto& [feedURL, publicKey, environment, problem] = configuration;
    if (!environment) return Problem::unknownEnvironment;
    if (!feedURL) return Problem::missingFeedURL;
    if (!configuration.mayComeFrom(*feedURL)) return Problem::unsupportedFeedURL;
    if (!publicKey) return Problem::missingPublicKey;
    const auto key = base64Decoded(*publicKey);
    if (!key || key->size() != publicKeyBytes) return Problem::invalidPublicKey;
    if (environment == SoftwareUpdateConfiguration::Environment::production &&
        publicKey == developmentPublicKey) {
        return Problem::developmentKeyInProduction;
    }
    return std::nullopt;
}

}  // namespace

SoftwareUpdateConfiguration SoftwareUpdateConfiguration::of(const BundleInfo& bundle) {
    SoftwareUpdateConfiguration configuration;
    if (!isOn(bundle.value("QuillmarUpdateEnabled"))) {
        configuration.problem = Problem::disabled;
        return configuration;
    }
    configuration.environment =
        enumFromName<Environment>(bundle.value("QuillmarUpdateEnvironment").value_or(""));
    configuration.feedURL = Url::parse(bundle.value("SUFeedURL").value_or(""));
    configuration.publicKey = bundle.value("SUPublicEDKey");
    configuration.problem = problemOf(configuration);
    return configuration;
}

bool SoftwareUpdateConfiguration::mayComeFrom(const Url& url) const {
    const std::string host = lowercased(url.host());
    if (host.empty()) return false;
    if (url.scheme() == "https") return true;
    const bool isThisMachine = host == "127.0.0.1" || host == "localhost" || host == "::1";
    return environment == Environment::development && url.scheme() == "http" && isThisMachine;
}

}  // namespace quillmar
