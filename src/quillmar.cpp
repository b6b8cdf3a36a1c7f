#include "base/StandardStreams.h"
#include "client/Client.h"
#include "commandline/LocaleLanguages.h"
#include "commandline/Output.h"
#include "linux/early/EarlyPainter.h"

int main(int argc, char** argv) {
    using namespace quillmar;
    occupyStandardStreams();
    const Environment environment = processEnvironment();
    const GeneralLanguage language = preferredLanguage(localeLanguages(environment));
    const auto paint = [&] {
        paintLastShown(applicationSupportDirectoryOrNowhere(environment) / "Cache/LastShown", environment);
    };
    const auto complain = [&](int status, const std::string& text) {
        return printReply({.status = status, .errors = "quillmar: " + text}, language);
    };
    try {
        const BundleInfo bundle = loadBundleInfo(environment);
        const std::vector<std::string> words(argv + 1, argv + argc);
        return Client(bundle, environment, language, paint).run(words);
    } catch (const UsageError& error) {
        return complain(usageStatus, error.complaint(language));
    } catch (const std::exception& error) {
        return complain(1, errorText(error, language) + "\n");
    }
}
