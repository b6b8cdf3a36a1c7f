#include "linux/x11/OutputIdentity.h"

#include <fmt/format.h>

#include "linux/x11/Edid.h"

namespace quillmar {

namespace {

/// Settings on disk refer to what follows from it.
constexpr Uuid monitorNamespace({0x6f, 0x1d, 0x0c, 0x5e, 0x92, 0x4b, 0x4c, 0x39, 0xa8, 0x57, 0x2e, 0xd3, 0x84,
                                 0x0b, 0x71, 0xf6});

/// Empty when the monitor says nothing of itself.
std::string identityText(const ConnectedOutput& output) {
    const auto edid = parseEdid(output.edid);
    if (!edid) return {};
    return fmt::format("edid:{}-{:04x}-{:08x}-{}", edid->maker, edid->product, edid->serialNumber,
                       edid->serialText);
}

}  // namespace

std::map<std::uint32_t, Uuid> outputUuids(const std::vector<ConnectedOutput>& outputs) {
    std::map<std::string, int> counts;
    for (const ConnectedOutput& output : outputs) ++counts[identityText(output)];
    std::map<std::uint32_t, Uuid> uuids;
    for (const ConnectedOutput& output : outputs) {
        std::string text = identityText(output);
        if (text.empty() || counts[text] > 1) text += "@" + output.connector;
        uuids.emplace(output.number, Uuid::fromName(monitorNamespace, text));
    }
    return uuids;
}

std::string outputName(const ConnectedOutput& output) {
    const auto edid = parseEdid(output.edid);
    if (!edid) return output.connector;
    if (!edid->monitorName.empty()) return edid->monitorName;
    return fmt::format("{} {:04X}", edid->maker, edid->product);
}

}  // namespace quillmar
