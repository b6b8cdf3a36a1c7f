#pragma once
#include <filesystem>

#include "async/Task.h"
#include "linux/render/protocol/RenderProtocol.h"

namespace quillmar {

/// One run of the program that reads pictures. Its destruction ends that process at once, whatever it does,
/// without waiting for it. Main thread, on which the GLib main loop runs.
class RenderProcess {
public:
    /// Throws `std::system_error` when it cannot be started.
    explicit RenderProcess(const std::filesystem::path& program);
    RenderProcess(const RenderProcess&) = delete;
    RenderProcess& operator=(const RenderProcess&) = delete;
    ~RenderProcess();

    /// Sends a message with copies of these descriptors. What is lost with a process that has ended is known
    /// by its missing answer.
    template <class Message>
    void send(const Message& message, std::span<const int> descriptors) {
        render::send(channel_.get(), message, descriptors);
    }
    /// The next answer, of a stranger: only its shape is known. Nothing when the process has ended or talks
    /// nonsense. Throws `CancellationError` when the task is cancelled.
    Task<std::optional<render::Answer>> answer();

private:
    FileDescriptor channel_;
    FileDescriptor process_;
};

}  // namespace quillmar
