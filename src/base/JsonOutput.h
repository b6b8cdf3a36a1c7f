#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillmar::json {

enum class Layout {
    pretty,   ///< two blanks a level
    compact,  ///< on one line
};

class Output;
class Place;

/// A member of a record that waits for its turn: keys are written in their order, not in that of `describe`.
struct PendingField {
    std::string_view key;
    const void* value;
    void (*write)(Output& output, const void* value, const Place& place);
};

/// The text of a document, written from front to back.
class Output {
public:
    /// `expectedBytes` saves the text from being moved as it grows.
    explicit Output(Layout layout, std::size_t expectedBytes = 0) : isPretty_(layout == Layout::pretty) {
        text_.reserve(expectedBytes);
    }

    void null() { text_ += "null"; }
    void boolean(bool value) { text_ += value ? "true" : "false"; }
    void natural(std::uint64_t value);
    void integer(std::int64_t value);
    /// `value` is finite.
    void real(double value);
    /// False, with nothing written, for bytes that are not UTF-8.
    [[nodiscard]] bool text(std::string_view value);

    void beginObject() { begin('{'); }
    /// Comes before each member's value. `key` needs no escapes.
    void key(std::string_view key);
    /// As `key`, for any text; false, with nothing written, for bytes that are not UTF-8.
    [[nodiscard]] bool anyKey(std::string_view key);
    void endObject() { end('}'); }

    void beginArray() { begin('['); }
    /// Comes before each element.
    void element() { beginPart(); }
    void endArray() { end(']'); }

    std::string take() { return std::move(text_); }

    /// A stack for the records that are being written; a record leaves it as it found it.
    std::vector<PendingField>& pendingFields() { return pendingFields_; }

private:
    void begin(char bracket);
    void beginPart();
    void end(char bracket);
    void newLine();

    bool isPretty_;
    bool isFirstPart_ = false;
    std::size_t depth_ = 0;
    std::string text_;
    std::vector<PendingField> pendingFields_;
};

}  // namespace quillmar::json
