#pragma once
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "history/ShownPicture.h"

namespace quillmar {

enum class HistoryStep { back, forward };

/// What each display showed, one picture after the other, and where in this line it is now. Bounded: the
/// oldest are forgotten. Main thread.
class PictureHistory {
public:
    static constexpr std::size_t maximumPictures = 200;  ///< of a display
    static constexpr std::size_t maximumDisplays = 64;

    PictureHistory() = default;
    /// Reads lines as `lineOf` writes them; those that make no sense are left out. No display shows anything
    /// yet.
    explicit PictureHistory(std::string_view text);
    /// Where a picture that is shown is kept, with a line feed at its end.
    static std::string lineOf(const std::string& displayID, const ShownPicture& picture);
    /// Everything, as lines.
    std::string text() const;

    /// The display shows the picture from now on. False when nothing new is to be kept: it showed it already,
    /// or last.
    bool show(const std::string& displayID, ShownPicture picture);
    /// The display shows none of these any more.
    void showNothing(const std::string& displayID);
    /// What it shows now; null when that is none of these.
    const ShownPicture* current(const std::string& displayID) const;
    /// The one that comes before or after what it shows now; null when there is none. Of a display that shows
    /// none of these, the last one comes before.
    const ShownPicture* neighbour(const std::string& displayID, HistoryStep step) const;
    /// The display shows one of its former pictures. Nothing when that was forgotten meanwhile.
    void returnTo(const std::string& displayID, const ShownPicture& picture);
    /// Forgets one picture of a display.
    void forget(const std::string& displayID, const ShownPicture& picture);
    /// Forgets such files on all displays; what they show now stays known.
    void forgetFiles(const std::function<bool(const Url& fileURL)>& isForgotten);

private:
    struct Line {
        std::deque<ShownPicture> pictures;
        std::optional<std::size_t> present;
        void remove(std::size_t at);
    };
    Line* find(const std::string& displayID);
    const Line* find(const std::string& displayID) const;
    void makeRoom();

    std::map<std::string, Line> lines_;  ///< by display
};

}  // namespace quillmar
