#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/FileDescriptor.h"
#include "platform/PictureRendering.h"

namespace quillmar::render {

// What the agent and the process that reads pictures say to each other: one order, then an answer or, for a
// render, three (size, drawing, end). Each message is one packet of one of these records; descriptors go with
// it. Both come from one build, so the records go as they lie in memory, but the number says so.

/// Changes with every change of a record.
constexpr std::uint32_t protocolNumber = 0x716d0001;
/// The descriptor that the process finds its end of the conversation at.
constexpr int channelDescriptor = 0;

enum class Verb : std::uint32_t {
    render = 1,  ///< with the picture's file
    load,        ///< with a PNG file and the memory for its pixels
    check,       ///< with the picture's file
};
struct Order {
    std::uint32_t number = protocolNumber;
    Verb verb = Verb::check;
    PixelSize size;  ///< what `load` must find
};
/// Comes with the memory for the canvas's pixels. Everything of a composition but the caption.
struct Drawing {
    std::uint32_t number = protocolNumber;
    PixelSize canvas;
    RgbColor background;
    bool isTiled = false;
    PixelRect destination;
};
enum class AnswerKind : std::uint32_t { size = 1, done, unreadable, tooLarge, failed };
struct Answer {
    std::uint32_t number = protocolNumber;
    AnswerKind kind = AnswerKind::failed;
    PixelSize size;  ///< of the picture, with `AnswerKind::size`
};

/// Sends one packet without waiting. No when the other end is gone or takes none.
bool sendPacket(int channel, std::span<const std::uint8_t> bytes, std::span<const int> descriptors = {});
/// Receives one packet of exactly `bytes`, and the descriptors in it, at most two. No at the end, for a
/// packet of another length, and where one would have to wait on a channel that does not.
bool receivePacket(int channel, std::span<std::uint8_t> bytes, std::vector<FileDescriptor>& descriptors);

template <class Message>
bool send(int channel, const Message& message, std::span<const int> descriptors = {}) {
    return sendPacket(channel, {reinterpret_cast<const std::uint8_t*>(&message), sizeof message},
                      descriptors);
}
/// Nothing for anything but a whole message of the right protocol.
template <class Message>
std::optional<Message> receive(int channel, std::vector<FileDescriptor>& descriptors) {
    Message message;
    const std::span bytes(reinterpret_cast<std::uint8_t*>(&message), sizeof message);
    if (!receivePacket(channel, bytes, descriptors) || message.number != protocolNumber) return std::nullopt;
    return message;
}

}  // namespace quillmar::render
