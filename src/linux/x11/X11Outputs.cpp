#include "linux/x11/X11Outputs.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

#include <algorithm>
#include <memory>
#include <span>

#include "linux/x11/X11Connection.h"

namespace quillmar {

namespace {

struct RandrFree {
    void operator()(XRRScreenResources* resources) const { XRRFreeScreenResources(resources); }
    void operator()(XRROutputInfo* info) const { XRRFreeOutputInfo(info); }
    void operator()(XRRCrtcInfo* info) const { XRRFreeCrtcInfo(info); }
};
template <class T>
using Randr = std::unique_ptr<T, RandrFree>;

/// Longer ones are no EDID; in units of four bytes, as the protocol counts.
constexpr long maximumEdidLength = 8192;

bool hasRandr(Display* display) {
    int event = 0;
    int error = 0;
    int major = 0;
    int minor = 0;
    return XRRQueryExtension(display, &event, &error) && XRRQueryVersion(display, &major, &minor) &&
           (major > 1 || minor >= 3);
}

/// What the X server knows already; asking the monitors anew would take a good part of a second.
Randr<XRRScreenResources> resourcesOf(Display* display) {
    if (!hasRandr(display)) return nullptr;
    return Randr<XRRScreenResources>(XRRGetScreenResourcesCurrent(display, DefaultRootWindow(display)));
}

Bytes edidOf(Display* display, RROutput output) {
    const Atom property = XInternAtom(display, "EDID", True);
    if (property == None) return {};
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    if (XRRGetOutputProperty(display, output, property, 0, maximumEdidLength, False, False, AnyPropertyType,
                             &type, &format, &count, &left, &data) != Success) {
        return {};
    }
    const std::unique_ptr<unsigned char, decltype(&XFree)> held(data, &XFree);
    if (type != XA_INTEGER || format != 8) return {};
    return Bytes(data, data + count);
}

}  // namespace

std::vector<ConnectedOutput> connectedOutputs(Display* display) {
    X11ErrorTrap trap(display);
    std::vector<ConnectedOutput> outputs;
    const auto resources = resourcesOf(display);
    if (!resources) return outputs;
    for (const RROutput output :
         std::span(resources->outputs, static_cast<std::size_t>(resources->noutput))) {
        const Randr<XRROutputInfo> info(XRRGetOutputInfo(display, resources.get(), output));
        if (!info || info->connection == RR_Disconnected) continue;
        outputs.push_back({static_cast<std::uint32_t>(output),
                           std::string(info->name, static_cast<std::size_t>(info->nameLen)),
                           edidOf(display, output)});
    }
    return outputs;
}

std::optional<PixelRect> outputArea(Display* display, std::uint32_t output) {
    X11ErrorTrap trap(display);
    const auto resources = resourcesOf(display);
    if (!resources) return std::nullopt;
    const std::span known(resources->outputs, static_cast<std::size_t>(resources->noutput));
    if (std::ranges::find(known, RROutput{output}) == known.end()) return std::nullopt;
    const Randr<XRROutputInfo> info(XRRGetOutputInfo(display, resources.get(), output));
    if (!info || info->crtc == None) return std::nullopt;
    const Randr<XRRCrtcInfo> crtc(XRRGetCrtcInfo(display, resources.get(), info->crtc));
    if (!crtc || crtc->width == 0 || crtc->height == 0) return std::nullopt;
    return PixelRect{crtc->x, crtc->y, static_cast<int>(crtc->width), static_cast<int>(crtc->height)};
}

}  // namespace quillmar
