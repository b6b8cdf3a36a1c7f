#include "linux/early/EarlyPainter.h"

#include <algorithm>
#include <thread>
#include <vector>

#include "linux/session/DesktopNames.h"
#include "linux/x11/OutputMemory.h"
#include "linux/x11/X11Outputs.h"
#include "linux/x11/X11Picture.h"
#include "linux/x11/X11RootWindow.h"
#include "storage/LastShownRows.h"

namespace quillmar {

namespace {

/// A display with what it is to show.
struct Part {
    PixelRect area;
    LastShownRows rows;
    bool isSound = false;
};

std::vector<Part> partsToShow(const std::filesystem::path& folder, const std::filesystem::path& identities,
                              const std::vector<ConnectedOutput>& outputs) {
    const auto uuids = rememberedIdentities(identities).identify(pluggedMonitors(outputs));
    std::vector<Part> parts;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const auto& area = outputs[i].area;
        if (!area) continue;
        auto rows = LastShownRows::open(folder, uuids[i].lowercaseString());
        if (!rows || rows->size().width != area->width || rows->size().height != area->height) continue;
        parts.push_back({.area = *area, .rows = *std::move(rows)});
    }
    return parts;
}

/// The disk is waited for here: the X server, which everybody waits for, must find the rows in memory. What
/// is damaged is left to the program.
void fetchAll(std::vector<Part>& parts) {
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 1; i < parts.size(); ++i) {
            threads.emplace_back([&part = parts[i]] { part.isSound = part.rows.fetch(); });
        }
        parts.front().isSound = parts.front().rows.fetch();
    }
    std::erase_if(parts, [](const Part& part) { return !part.isSound; });
}

std::vector<DesktopImageTable::Entry> entriesOf(const std::vector<Part>& parts) {
    std::vector<DesktopImageTable::Entry> entries;
    for (const Part& part : parts) entries.push_back({part.area, part.rows.png()});
    return entries;
}

bool isShown(const X11Server& server, const RootGeometry& root,
             const std::vector<DesktopImageTable::Entry>& entries) {
    if (!ownRootPixmap(server, root)) return false;
    const DesktopImageTable table = desktopImageTable(server);
    return std::ranges::all_of(entries,
                               [&](const auto& entry) { return table.fileAt(entry.area) == entry.file; });
}

int paint(const std::filesystem::path& folder, const std::filesystem::path& identities) {
    const X11Connection connection("");
    const X11Server& server = connection.server();
    const auto outputs = connectedOutputs(server);
    auto parts = partsToShow(folder, identities, outputs);
    if (parts.empty()) return 0;
    const RootGeometry root = rootGeometry(server);
    if (isShown(server, root, entriesOf(parts))) return static_cast<int>(parts.size());
    fetchAll(parts);
    if (parts.empty()) return 0;
    const auto entries = entriesOf(parts);
    const std::uint32_t pixmap = newRootPixmap(server, root);
    for (const Part& part : parts) {
        const X11Picture picture(connection,
                                 {part.rows.size(), part.rows.descriptor(), LastShownRows::firstRow});
        picture.draw(pixmap, part.area);
    }
    const X11ServerGrab grab(connection);
    const bool isAsBefore =
        rootGeometry(server) == root && std::ranges::all_of(outputs, [&](const auto& output) {
            return outputArea(server, output.number) == output.area;
        });
    // Displays that are being rearranged are the program's own business, a moment later.
    if (!isAsBefore) return 0;
    showRootPixmap(connection, pixmap, root, entries);
    return static_cast<int>(parts.size());
}

}  // namespace

int paintLastShown(const std::filesystem::path& folder, const Environment& environment) {
    if (!namedDesktops(environment).empty() || isWaylandSession(environment)) return 0;
    try {
        return paint(folder, outputIdentitiesFile(environment));
    } catch (const std::exception&) {
        return 0;  // the program itself tries again, and says why it fails
    }
}

}  // namespace quillmar
