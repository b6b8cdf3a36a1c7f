#include "client/Client.h"

#include <unistd.h>

#include "client/AgentBus.h"
#include "commandline/Completion.h"
#include "commandline/Help.h"
#include "commandline/Output.h"

namespace quillmar {
namespace {

using Wish = CommandLine::Wish;

/// Absolute, and no obstacle where it is gone: most commands name no file.
std::string workingDirectory() {
    std::error_code failure;
    const std::filesystem::path folder = std::filesystem::current_path(failure);
    return failure ? "/" : folder.string();
}

}  // namespace

int Client::run(const std::vector<std::string>& words) {
    // The shell's own question is no command: it is answered whatever the line looks like.
    if (words.size() > 1 && words.front() == "--complete")
        return print(completionText(complete(std::span(words).subspan(1))));
    const CommandLine line = CommandLine::parse(words);
    switch (line.wish) {
        case Wish::start: return start();
        case Wish::version: return print("Quillmar " + version() + "\n");
        case Wish::help: return print(helpText(line.helpOn, language_));
        case Wish::command: break;
    }
    judge(line);
    return ask(line, words);
}

int Client::ask(const CommandLine& line, const std::vector<std::string>& words) {
    const ControlCall call{words, workingDirectory(), version()};
    const auto answer = line.is("watch") ? followAgent(call, {line.wantsJson(), language_}) : askAgent(call);
    if (const auto* reply = std::get_if<ControlReply>(&answer)) return printReply(*reply, language_);
    const NoAnswer reason = std::get<NoAnswer>(answer);
    if (reason == NoAnswer::endedMeanwhile)
        return fail(localized("Quillmar ended before the command was done."_key, language_));
    if (reason == NoAnswer::otherVersion) {
        return fail(
            localized("Another version of Quillmar is running that does not understand version %@: "
                      "quit it and start it again."_key,
                      language_, {version()}));
    }
    // The screens can be looked at by anybody.
    if (line.is("displays")) return becomeAgent(words);
    if (reason == NoAnswer::unreachable || !takeInstanceLock())
        return fail(localized("Quillmar is starting or cannot be reached."_key, language_));
    if (line.command->words.starts_with("backup ")) return becomeAgent(words);
    return fail(localized("Quillmar is not running."_key, language_));
}

int Client::start() {
    // Held while painting alone: the agent takes it anew. Of two starts at once one paints, and whichever
    // agent comes second calls the other to the front.
    if (const auto lock = takeInstanceLock()) paint_();
    return becomeAgent({});
}

int Client::becomeAgent(const std::vector<std::string>& words) {
    const std::string program = companionProgram("quillmar-agent").string();
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    ::execv(program.c_str(), arguments.data());
    const std::error_code failure(errno, std::generic_category());
    return fail(
        localized("The program %@ cannot be started: %@."_key, language_, {program, failure.message()}));
}

std::unique_ptr<ApplicationInstanceLock> Client::takeInstanceLock() const {
    return ApplicationInstanceLock::take(temporaryDirectory(environment_),
                                         bundle_.identifier().value_or("Quillmar"));
}

int Client::print(const std::string& output) const { return printReply({.output = output}, language_); }

int Client::fail(const std::string& sentence) const {
    return printReply({.status = 1, .errors = "quillmar: " + sentence + "\n"}, language_);
}

}  // namespace quillmar
