#include "linux/x11/X11Outputs.h"

#include <xcb/randr.h>

#include <algorithm>
#include <span>
#include <string_view>

namespace quillmar {

namespace {

/// Longer ones are no EDID; in units of four bytes, as the protocol counts.
constexpr std::uint32_t maximumEdidLength = 8192;

bool hasRandr(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_randr_id);
    if (!extension || !extension->present) return false;
    const auto version =
        xcbAnswer(&xcb_randr_query_version_reply, connection, xcb_randr_query_version(connection, 1, 3));
    return version && (version->major_version > 1 || version->minor_version >= 3);
}

using Resources = XcbReply<xcb_randr_get_screen_resources_current_reply_t>;

/// What the X server knows already; asking the monitors anew would take a good part of a second.
Resources resourcesOf(const X11Server& server) {
    if (!hasRandr(server.connection)) return nullptr;
    return xcbAnswer(&xcb_randr_get_screen_resources_current_reply, server.connection,
                     xcb_randr_get_screen_resources_current(server.connection, server.root()));
}

std::span<const xcb_randr_output_t> outputsOf(const Resources& resources) {
    return {xcb_randr_get_screen_resources_current_outputs(resources.get()), resources->num_outputs};
}

XcbReply<xcb_randr_get_output_info_reply_t> infoOf(const X11Server& server, const Resources& resources,
                                                   xcb_randr_output_t output) {
    auto info = xcbAnswer(&xcb_randr_get_output_info_reply, server.connection,
                          xcb_randr_get_output_info(server.connection, output, resources->config_timestamp));
    if (info && info->status != XCB_RANDR_SET_CONFIG_SUCCESS) info.reset();
    return info;
}

std::optional<PixelRect> areaOf(const X11Server& server, const Resources& resources, xcb_randr_crtc_t crtc) {
    if (crtc == XCB_NONE) return std::nullopt;
    const auto info =
        xcbAnswer(&xcb_randr_get_crtc_info_reply, server.connection,
                  xcb_randr_get_crtc_info(server.connection, crtc, resources->config_timestamp));
    if (!info || info->status != XCB_RANDR_SET_CONFIG_SUCCESS || info->width == 0 || info->height == 0) {
        return std::nullopt;
    }
    return PixelRect{info->x, info->y, info->width, info->height};
}

xcb_atom_t edidAtom(xcb_connection_t* connection) {
    constexpr std::string_view name = "EDID";
    const auto atom = xcbAnswer(&xcb_intern_atom_reply, connection,
                                xcb_intern_atom(connection, 1, name.size(), name.data()));
    return atom ? atom->atom : xcb_atom_t{XCB_NONE};
}

Bytes edidOf(xcb_connection_t* connection, xcb_randr_output_t output, xcb_atom_t property) {
    if (property == XCB_NONE) return {};
    const auto answer = xcbAnswer(&xcb_randr_get_output_property_reply, connection,
                                  xcb_randr_get_output_property(connection, output, property, XCB_ATOM_ANY, 0,
                                                                maximumEdidLength, 0, 0));
    if (!answer || answer->type != XCB_ATOM_INTEGER || answer->format != 8) return {};
    const std::uint8_t* data = xcb_randr_get_output_property_data(answer.get());
    return Bytes(data, data + answer->num_items);
}

}  // namespace

std::vector<ConnectedOutput> connectedOutputs(const X11Server& server) {
    std::vector<ConnectedOutput> outputs;
    const Resources resources = resourcesOf(server);
    if (!resources) return outputs;
    const xcb_atom_t edid = edidAtom(server.connection);
    for (const xcb_randr_output_t output : outputsOf(resources)) {
        const auto info = infoOf(server, resources, output);
        if (!info || info->connection == XCB_RANDR_CONNECTION_DISCONNECTED) continue;
        outputs.push_back(
            {output,
             std::string(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                         info->name_len),
             edidOf(server.connection, output, edid), areaOf(server, resources, info->crtc)});
    }
    return outputs;
}

std::optional<PixelRect> outputArea(const X11Server& server, std::uint32_t output) {
    const Resources resources = resourcesOf(server);
    if (!resources || std::ranges::find(outputsOf(resources), output) == outputsOf(resources).end()) {
        return std::nullopt;
    }
    const auto info = infoOf(server, resources, output);
    return info ? areaOf(server, resources, info->crtc) : std::nullopt;
}

}  // namespace quillmar
