#include "client/Client.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "base/FileDescriptor.h"
#include "base/FileError.h"
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

/// Pipes, terminals and devices are written into here: what "/dev/stdout" is depends on who opens it, and a
/// pipe waits for its reader. The backup comes over the standard output then.
void sendToStandardOutput(std::string& file) {
    const auto isBelow = [&](std::string_view folder) { return file.starts_with(folder); };
    struct stat status{};
    const bool isThere = ::stat(file.c_str(), &status) == 0;
    const bool isFile = isThere && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
    const bool isOurs =
        file == "/dev/stdout" || file == "/dev/stderr" || isBelow("/dev/fd/") || isBelow("/proc/");
    if (!isThere || (isFile && !isOurs)) return;
    if (file != "/dev/stdout") {
        const FileDescriptor opened(::open(file.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
        if (!opened || ::dup2(opened.get(), STDOUT_FILENO) < 0)
            throw FileError(file, std::error_code(errno, std::generic_category()));
    }
    file = "-";
}

}  // namespace

int Client::run(const std::vector<std::string>& words) {
    // The shell's own question is no command: it is answered whatever the line looks like.
    if (words.size() > 1 && words.front() == "--complete")
        return print(completionText(complete(std::span(words).subspan(1))));
    const CommandLine line = CommandLine::parse(words);
    switch (line.wish) {
        case Wish::start: return start({});
        case Wish::version: return print("Quillmar " + version() + "\n");
        case Wish::help: return print(helpText(line.helpOn, language_));
        case Wish::command: break;
    }
    judge(line);
    std::vector<std::string> asked = words;
    if (line.is("backup export"))
        sendToStandardOutput(*std::find(asked.rbegin(), asked.rend(), line.operands.front()));
    return ask(line, asked);
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
    if (line.is("settings")) return start(words);
    return fail(localized("Quillmar is not running."_key, language_));
}

int Client::start(const std::vector<std::string>& words) {
    // Held while painting alone: the agent takes it anew. Of two starts at once one paints, and whichever
    // agent comes second calls the other to the front.
    if (const auto lock = takeInstanceLock()) paint_();
    return becomeAgent(words);
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
