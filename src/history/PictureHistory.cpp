#include "history/PictureHistory.h"

#include <algorithm>

#include "base/JsonRecord.h"

namespace quillmar {
namespace {

struct HistoryLine {
    std::string display;
    ShownPicture picture;
    static void describe(auto& self, auto& io) {
        io.required("display", self.display).required("picture", self.picture);
    }
};

}  // namespace

PictureHistory::PictureHistory(std::string_view text) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        try {
            auto [display, picture] = json::decode<HistoryLine>(line);
            show(display, std::move(picture));
        } catch (const JsonRecordError&) {
            // Cut off with the process, or of a later version: the others are as good.
        }
    }
    for (auto& [display, line] : lines_) line.present.reset();
}

std::string PictureHistory::lineOf(const std::string& displayID, const ShownPicture& picture) {
    return json::encodeCompact(HistoryLine{displayID, picture}) + "\n";
}

std::string PictureHistory::text() const {
    std::string text;
    for (const auto& [display, line] : lines_) {
        for (const ShownPicture& picture : line.pictures) text += lineOf(display, picture);
    }
    return text;
}

bool PictureHistory::show(const std::string& displayID, ShownPicture picture) {
    if (!find(displayID) && lines_.size() == maximumDisplays) makeRoom();
    Line& line = lines_[displayID];
    const std::size_t last = line.pictures.size() - 1;
    for (const std::size_t at : {line.present.value_or(last), last}) {
        if (line.pictures.empty() || !line.pictures[at].isSamePicture(picture)) continue;
        ShownPicture& known = line.pictures[at];
        picture.date = known.date;
        const bool isNew = known != picture && at == last;
        known = std::move(picture);
        line.present = at;
        return isNew;
    }
    line.pictures.push_back(std::move(picture));
    if (line.pictures.size() > maximumPictures) line.pictures.pop_front();
    line.present = line.pictures.size() - 1;
    return true;
}

/// For another display: the one that showed nothing for the longest time has to go.
void PictureHistory::makeRoom() {
    lines_.erase(std::ranges::min_element(lines_, {}, [](const auto& entry) {
        const auto& pictures = entry.second.pictures;
        return pictures.empty() ? WallTime{} : pictures.back().date;
    }));
}

void PictureHistory::showNothing(const std::string& displayID) {
    if (Line* line = find(displayID)) line->present.reset();
}

const ShownPicture* PictureHistory::current(const std::string& displayID) const {
    const Line* line = find(displayID);
    return line && line->present ? &line->pictures[*line->present] : nullptr;
}

const ShownPicture* PictureHistory::neighbour(const std::string& displayID, HistoryStep step) const {
    const Line* line = find(displayID);
    if (!line) return nullptr;
    const std::size_t count = line->pictures.size();
    const std::size_t present = line->present.value_or(count);
    if (step == HistoryStep::back) return present == 0 ? nullptr : &line->pictures[present - 1];
    return present + 1 < count ? &line->pictures[present + 1] : nullptr;
}

void PictureHistory::returnTo(const std::string& displayID, const ShownPicture& picture) {
    Line* line = find(displayID);
    if (!line) return;
    const auto found = std::ranges::find(line->pictures, picture);
    if (found == line->pictures.end()) return;
    line->present = static_cast<std::size_t>(found - line->pictures.begin());
}

void PictureHistory::forget(const std::string& displayID, const ShownPicture& picture) {
    Line* line = find(displayID);
    if (!line) return;
    const auto found = std::ranges::find(line->pictures, picture);
    if (found != line->pictures.end()) line->remove(static_cast<std::size_t>(found - line->pictures.begin()));
}

void PictureHistory::forgetFiles(const std::function<bool(const Url&)>& isForgotten) {
    for (auto& [display, line] : lines_) {
        for (std::size_t at = line.pictures.size(); at-- > 0;) {
            const auto& fileURL = line.pictures[at].fileURL;
            if (fileURL && at != line.present && isForgotten(*fileURL)) line.remove(at);
        }
    }
}

void PictureHistory::Line::remove(std::size_t at) {
    pictures.erase(pictures.begin() + static_cast<std::ptrdiff_t>(at));
    if (present == at) {
        present.reset();
    } else if (present && *present > at) {
        --*present;
    }
    // What stood between them is gone: a step that changes nothing would look like a failure.
    if (at > 0 && at < pictures.size() && pictures[at - 1].isSamePicture(pictures[at]))
        remove(present == at ? at - 1 : at);
}

PictureHistory::Line* PictureHistory::find(const std::string& displayID) {
    const auto found = lines_.find(displayID);
    return found == lines_.end() ? nullptr : &found->second;
}

const PictureHistory::Line* PictureHistory::find(const std::string& displayID) const {
    const auto found = lines_.find(displayID);
    return found == lines_.end() ? nullptr : &found->second;
}

}  // namespace quillmar
