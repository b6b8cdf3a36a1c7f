#pragma once
#include <string>

using GInetAddress = struct _GInetAddress;

namespace quillmar {

/// Whether the address is one of the public Internet: not this machine, nor a private, shared, link-local,
/// multicast or otherwise reserved network.
bool isPublicAddress(GInetAddress* address);

/// Whether a URL's host may be of the public Internet, as far as its text tells: not what other names lead
/// to.
bool mayBePublicHost(const std::string& host);

}  // namespace quillmar
