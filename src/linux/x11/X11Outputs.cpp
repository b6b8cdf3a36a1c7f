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

using OutputInfo = XcbReply<xcb_randr_get_output_info_reply_t>;

// Questions are sent together and answered together: each wait for the server takes a turn of both processes.

xcb_randr_get_output_info_cookie_t askInfo(xcb_connection_t* connection, const Resources& resources,
                                           xcb_randr_output_t output) {
    return xcb_randr_get_output_info(connection, output, resources->config_timestamp);
}

OutputInfo infoOf(xcb_connection_t* connection, xcb_randr_get_output_info_cookie_t question) {
    auto info = xcbAnswer(&xcb_randr_get_output_info_reply, connection, question);
    if (info && info->status != XCB_RANDR_SET_CONFIG_SUCCESS) info.reset();
    return info;
}

/// Asked of no CRTC, the server refuses, which is an answer too.
xcb_randr_get_crtc_info_cookie_t askArea(xcb_connection_t* connection, const Resources& resources,
                                         const OutputInfo& info) {
    return xcb_randr_get_crtc_info(connection, info->crtc, resources->config_timestamp);
}

std::optional<PixelRect> areaOf(xcb_connection_t* connection, xcb_randr_get_crtc_info_cookie_t question) {
    const auto info = xcbAnswer(&xcb_randr_get_crtc_info_reply, connection, question);
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

xcb_randr_get_output_property_cookie_t askEdid(xcb_connection_t* connection, xcb_randr_output_t output,
                                               xcb_atom_t property) {
    return xcb_randr_get_output_property(connection, output, property, XCB_ATOM_ANY, 0, maximumEdidLength, 0,
                                         0);
}

Bytes edidOf(xcb_connection_t* connection, xcb_randr_get_output_property_cookie_t question) {
    const auto answer = xcbAnswer(&xcb_randr_get_output_property_reply, connection, question);
    if (!answer || answer->type != XCB_ATOM_INTEGER || answer->format != 8) return {};
    const std::uint8_t* data = xcb_randr_get_output_property_data(answer.get());
    return Bytes(data, data + answer->num_items);
}

}  // namespace

std::vector<ConnectedOutput> connectedOutputs(const X11Server& server) {
    xcb_connection_t* connection = server.connection;
    const Resources resources = resourcesOf(server);
    if (!resources) return {};
    const xcb_atom_t edid = edidAtom(connection);
    std::vector<xcb_randr_get_output_info_cookie_t> infos;
    for (const auto output : outputsOf(resources)) infos.push_back(askInfo(connection, resources, output));

    std::vector<ConnectedOutput> outputs;
    std::vector<std::pair<xcb_randr_get_output_property_cookie_t, xcb_randr_get_crtc_info_cookie_t>> details;
    for (std::size_t i = 0; i < infos.size(); ++i) {
        const OutputInfo info = infoOf(connection, infos[i]);
        if (!info || info->connection == XCB_RANDR_CONNECTION_DISCONNECTED) continue;
        const xcb_randr_output_t number = outputsOf(resources)[i];
        const auto* name = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
        outputs.push_back({number, std::string(name, info->name_len), {}, std::nullopt});
        details.emplace_back(askEdid(connection, number, edid), askArea(connection, resources, info));
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        outputs[i].edid = edidOf(connection, details[i].first);
        outputs[i].area = areaOf(connection, details[i].second);
    }
    return outputs;
}

std::optional<PixelRect> outputArea(const X11Server& server, std::uint32_t output) {
    xcb_connection_t* connection = server.connection;
    const Resources resources = resourcesOf(server);
    if (!resources || std::ranges::find(outputsOf(resources), output) == outputsOf(resources).end()) {
        return std::nullopt;
    }
    const OutputInfo info = infoOf(connection, askInfo(connection, resources, output));
    if (!info || info->crtc == XCB_NONE) return std::nullopt;
    return areaOf(connection, askArea(connection, resources, info));
}

}  // namespace quillmar
