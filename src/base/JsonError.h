#pragma once
#include <stdexcept>
#include <string>

namespace quillmar {

/// A document that could not be read as the record it should hold, or a record that no document can hold.
/// `what()` is "<place>: <reason>", the place in the form "wallpaper.displays[1].mode".
class JsonRecordError : public std::runtime_error {
public:
    JsonRecordError(std::string place, std::string reason)
        : std::runtime_error(place.empty() ? reason : place + ": " + reason),
          place_(std::move(place)),
          reason_(std::move(reason)) {}

    const std::string& place() const { return place_; }
    const std::string& reason() const { return reason_; }

private:
    std::string place_;
    std::string reason_;
};

}  // namespace quillmar
