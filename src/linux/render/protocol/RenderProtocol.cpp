#include "linux/render/protocol/RenderProtocol.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace quillmar::render {
namespace {

constexpr std::size_t maximumDescriptors = 2;
using ControlBytes = std::array<std::uint8_t, CMSG_SPACE(maximumDescriptors * sizeof(int))>;

}  // namespace

bool sendPacket(int channel, std::span<const std::uint8_t> bytes, std::span<const int> descriptors) {
    iovec content{const_cast<std::uint8_t*>(bytes.data()), bytes.size()};  // only read
    alignas(cmsghdr) ControlBytes control{};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    if (!descriptors.empty()) {
        message.msg_control = control.data();
        message.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
        cmsghdr* head = CMSG_FIRSTHDR(&message);
        head->cmsg_level = SOL_SOCKET;
        head->cmsg_type = SCM_RIGHTS;
        head->cmsg_len = CMSG_LEN(descriptors.size_bytes());
        std::memcpy(CMSG_DATA(head), descriptors.data(), descriptors.size_bytes());
    }
    return ::sendmsg(channel, &message, MSG_NOSIGNAL | MSG_DONTWAIT) == static_cast<ssize_t>(bytes.size());
}

bool receivePacket(int channel, std::span<std::uint8_t> bytes, std::vector<FileDescriptor>& descriptors) {
    iovec content{bytes.data(), bytes.size()};
    alignas(cmsghdr) ControlBytes control{};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t count = 0;
    do {
        count = ::recvmsg(channel, &message, MSG_CMSG_CLOEXEC);
    } while (count < 0 && errno == EINTR);
    if (count < 0) return false;
    for (cmsghdr* head = CMSG_FIRSTHDR(&message); head; head = CMSG_NXTHDR(&message, head)) {
        if (head->cmsg_level != SOL_SOCKET || head->cmsg_type != SCM_RIGHTS) continue;
        for (std::size_t at = 0; at + sizeof(int) <= head->cmsg_len - CMSG_LEN(0); at += sizeof(int)) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(head) + at, sizeof descriptor);
            descriptors.emplace_back(descriptor);
        }
    }
    return count == static_cast<ssize_t>(bytes.size()) && (message.msg_flags & MSG_TRUNC) == 0;
}

}  // namespace quillmar::render
