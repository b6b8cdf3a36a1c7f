#include "client/AgentBus.h"

#include <systemd/sd-bus.h>

#include <limits>
#include <memory>

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

}  // namespace

std::variant<ControlReply, NoAnswer> askAgent(const ControlCall& call) {
    sd_bus* opened = nullptr;
    if (sd_bus_open_user(&opened) < 0) return NoAnswer::nobody;
    const Held<sd_bus> bus(opened);
    const Held<sd_bus_message> message = packed(bus.get(), call);
    if (!message) return NoAnswer::unreachable;
    CallError error;
    sd_bus_message* answered = nullptr;
    const int result = sd_bus_call(bus.get(), message.get(), std::numeric_limits<std::uint64_t>::max(),
                                   &error.error, &answered);
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

}  // namespace quillmar
