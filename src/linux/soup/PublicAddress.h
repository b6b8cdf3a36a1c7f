#pragma once

using GInetAddress = struct _GInetAddress;

namespace quillmar {

/// Whether the address is one of the public Internet: not this machine, nor a private, shared, link-local,
/// multicast or otherwise reserved network.
bool isPublicAddress(GInetAddress* address);

}  // namespace quillmar
