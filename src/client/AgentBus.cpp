#include "client/AgentBus.h"

#include <poll.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include "commandline/FollowedText.h"

namespace quillmar {
namespace {

constexpr const char* busName = "com.quillmar.Quillmar";
constexpr const char* objectPath = "/com/quillmar/Quillmar/Control";
constexpr const char* interfaceName = "com.quillmar.Quillmar.Control";

struct Release {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
template <class T>
using Held = std::unique_ptr<T, Release>;

struct CallError {
    sd_bus_error error = SD_BUS_ERROR_NULL;
    CallError() = default;
    CallError(const CallError&) = delete;
    CallError& operator=(const CallError&) = delete;
    ~CallError() { sd_bus_error_free(&error); }
    bool is(const char* name) const { return sd_bus_error_has_name(&error, name) != 0; }
};

bool appendBytes(sd_bus_message* message, const std::string& bytes) {
    return sd_bus_message_append_array(message, 'y', bytes.data(), bytes.size()) >= 0;
}

Held<sd_bus_message> packed(sd_bus* bus, const ControlCall& call) {
    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_method_call(bus, &made, busName, objectPath, interfaceName, "Run") < 0) return {};
    Held<sd_bus_message> message(made);
    bool isWhole =
        sd_bus_message_set_auto_start(made, 0) >= 0 && sd_bus_message_open_container(made, 'a', "ay") >= 0;
    for (const std::string& argument : call.arguments) isWhole = isWhole && appendBytes(made, argument);
    isWhole = isWhole && sd_bus_message_close_container(made) >= 0 &&
              appendBytes(made, call.workingDirectory) &&
              sd_bus_message_append(made, "a{sv}", 1, "version", "s", call.version.c_str()) >= 0;
    return isWhole ? std::move(message) : nullptr;
}

NoAnswer reasonOf(const CallError& error) {
    if (error.is(SD_BUS_ERROR_SERVICE_UNKNOWN) || error.is(SD_BUS_ERROR_NAME_HAS_NO_OWNER))
        return NoAnswer::nobody;
    // The name is there a moment before the object behind it.
    if (error.is(SD_BUS_ERROR_UNKNOWN_OBJECT)) return NoAnswer::unreachable;
    if (error.is(SD_BUS_ERROR_INVALID_ARGS) || error.is(SD_BUS_ERROR_UNKNOWN_METHOD) ||
        error.is(SD_BUS_ERROR_UNKNOWN_INTERFACE) || error.is(SD_BUS_ERROR_INVALID_SIGNATURE)) {
        return NoAnswer::otherVersion;
    }
    return NoAnswer::endedMeanwhile;
}

Held<sd_bus> openedBus() {
    sd_bus* opened = nullptr;
    sd_bus_open_user(&opened);
    Held<sd_bus> bus(opened);
    // The call would wait for its welcome too, but not tell a bus that lets nobody in from an agent that
    // ended.
    const char* name = nullptr;
    return bus && sd_bus_get_unique_name(bus.get(), &name) >= 0 ? std::move(bus) : nullptr;
}

std::variant<ControlReply, NoAnswer> asked(sd_bus* bus, const ControlCall& call) {
    const Held<sd_bus_message> message = packed(bus, call);
    if (!message) return NoAnswer::unreachable;
    CallError error;
    sd_bus_message* answered = nullptr;
    const int result =
        sd_bus_call(bus, message.get(), std::numeric_limits<std::uint64_t>::max(), &error.error, &answered);
    const Held<sd_bus_message> answer(answered);
    if (result < 0) return reasonOf(error);
    ControlReply reply;
    const char* output = nullptr;
    const char* errors = nullptr;
    if (sd_bus_message_read(answer.get(), "iss", &reply.status, &output, &errors) < 0)
        return NoAnswer::otherVersion;
    reply.output = output;
    reply.errors = errors;
    return reply;
}

/// What waits for the reader of the standard output.
class FollowedOutput {
public:
    explicit FollowedOutput(const Following& following) : following_(following), text_(missed(following)) {}

    bool isEmpty() const { return text_.waiting().empty(); }
    bool hasEnded() const { return hasEnded_; }
    void end() { hasEnded_ = true; }
    void fail(int reason) {
        failure_ = {reason, std::generic_category()};
        end();
    }
    void add(std::string_view text) { text_.add(text); }
    /// As much as certainly does not have to be waited for, once the reader has room.
    void writeSome() {
        const std::string& text = text_.waiting();
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), std::min(text.size(), atOnce));
        if (written < 0 && errno != EINTR && errno != EAGAIN) {
            return fail(errno);
        }
        text_.remove(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    /// Writes what the reader takes at once, and says how it went.
    ControlReply finish() {
        pollfd reader{STDOUT_FILENO, POLLOUT, 0};
        while (!failure_ && !isEmpty() && ::poll(&reader, 1, 0) == 1 && reader.revents == POLLOUT)
            writeSome();
        if (!failure_) return {};
        return {.status = 1,
                .errors = "quillmar: " +
                          localized("The output could not be written: %@."_key, following_.language,
                                    {failure_.message()}) +
                          "\n"};
    }
    static int changed(sd_bus_message* message, void* output, sd_bus_error*) {
        auto* self = static_cast<FollowedOutput*>(output);
        const char *event = nullptr, *json = nullptr, *text = nullptr;
        if (sd_bus_message_read(message, "sss", &event, &json, &text) < 0) return 0;
        self->add(self->following_.wantsJson ? std::string(json) + "\n" : std::string(text));
        return 0;
    }
    static int ownerChanged(sd_bus_message* message, void* output, sd_bus_error*) {
        const char *name = nullptr, *before = nullptr, *now = nullptr;
        if (sd_bus_message_read(message, "sss", &name, &before, &now) >= 0 && *before != 0)
            static_cast<FollowedOutput*>(output)->end();
        return 0;
    }

private:
    static std::string missed(const Following& following) {
        if (following.wantsJson) return "{\"event\":\"missed\",\"format\":1}\n";
        return localized("The reader was too slow: some changes are missing."_key, following.language) + "\n";
    }

    static constexpr std::size_t atOnce = PIPE_BUF;
    const Following& following_;
    FollowedText text_;
    std::error_code failure_;
    bool hasEnded_ = false;
};

/// Sleeps until the bus has something, or the reader has room for what waits.
void waitForEither(sd_bus* bus, FollowedOutput& output) {
    pollfd descriptors[] = {{sd_bus_get_fd(bus), static_cast<short>(sd_bus_get_events(bus)), 0},
                            {STDOUT_FILENO, static_cast<short>(output.isEmpty() ? 0 : POLLOUT), 0}};
    if (::poll(descriptors, 2, -1) < 0) return;
    if ((descriptors[1].revents & (POLLERR | POLLNVAL)) != 0) {
        // A reader that has all and leaves is how a following ends.
        return output.isEmpty() ? output.end() : output.fail(EPIPE);
    }
    if ((descriptors[1].revents & POLLOUT) != 0) output.writeSome();
}

}  // namespace

std::variant<ControlReply, NoAnswer> askAgent(const ControlCall& call) {
    const Held<sd_bus> bus = openedBus();
    if (!bus) return NoAnswer::nobody;
    return asked(bus.get(), call);
}

std::variant<ControlReply, NoAnswer> followAgent(const ControlCall& call, const Following& following) {
    const Held<sd_bus> bus = openedBus();
    if (!bus) return NoAnswer::nobody;
    FollowedOutput output(following);
    // Before the question, so that no change falls between the answer and the first signal.
    const std::string owner = std::string(
                                  "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                                  "arg0='") +
                              busName + "'";
    if (sd_bus_match_signal(bus.get(), nullptr, busName, objectPath, interfaceName, "Changed",
                            &FollowedOutput::changed, &output) < 0 ||
        sd_bus_add_match(bus.get(), nullptr, owner.c_str(), &FollowedOutput::ownerChanged, &output) < 0) {
        return NoAnswer::unreachable;
    }
    auto answer = asked(bus.get(), call);
    const auto* reply = std::get_if<ControlReply>(&answer);
    if (!reply || reply->status != 0) return answer;
    output.add(reply->output);
    while (!output.hasEnded()) {
        const int progress = sd_bus_process(bus.get(), nullptr);
        if (progress < 0) output.end();
        if (progress == 0) waitForEither(bus.get(), output);
    }
    return output.finish();
}

}  // namespace quillmar
