#pragma once
#include <functional>
#include <memory>

#include "commandline/CommandLine.h"
#include "storage/ApplicationInstanceLock.h"
#include "storage/InstalledProgram.h"

namespace quillmar {

/// The program that a person calls: brings commands to the running one, and starts it.
class Client {
public:
    /// `paint` shows again what each display showed last; called at a start when no other instance runs.
    Client(const BundleInfo& bundle, const Environment& environment, GeneralLanguage language,
           std::function<void()> paint)
        : bundle_(bundle), environment_(environment), language_(language), paint_(std::move(paint)) {}

    /// Carries out a line and returns the exit status; becomes the agent where only that can do what is
    /// wanted. Throws `UsageError`.
    int run(const std::vector<std::string>& words);

private:
    int ask(const CommandLine& line, const std::vector<std::string>& words);
    int start(const std::vector<std::string>& words);
    int becomeAgent(const std::vector<std::string>& words);
    /// Empty while another instance holds it.
    std::unique_ptr<ApplicationInstanceLock> takeInstanceLock() const;
    std::string version() const { return bundle_.semanticVersion("unknown"); }
    int print(const std::string& output) const;
    int fail(const std::string& sentence) const;

    const BundleInfo& bundle_;
    const Environment& environment_;
    GeneralLanguage language_;
    std::function<void()> paint_;
};

}  // namespace quillmar
