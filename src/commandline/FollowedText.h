#pragma once
#include <string>
#include <string_view>
#include <utility>

namespace quillmar {

/// Lines that wait for a reader who may be slow, or never read. Where something has to be left out a line
/// says so, in its place; there are few such places, because nothing more is taken until half of what waits
/// has been read.
class FollowedText {
public:
    static constexpr std::size_t maximumBytes = 1 << 20;  ///< and one text more

    /// `missed` is the line, with its line feed, for what is left out.
    explicit FollowedText(std::string missed) : missed_(std::move(missed)) {}

    /// In whole lines.
    void add(std::string_view text) {
        if (isLeavingOut_ && waiting_.size() > maximumBytes / 2) return;
        isLeavingOut_ = waiting_.size() >= maximumBytes;
        waiting_ += isLeavingOut_ ? missed_ : text;
    }
    const std::string& waiting() const { return waiting_; }
    /// So many bytes of it have been read.
    void remove(std::size_t bytes) { waiting_.erase(0, bytes); }

private:
    std::string missed_;
    std::string waiting_;
    bool isLeavingOut_ = false;
};

}  // namespace quillmar
