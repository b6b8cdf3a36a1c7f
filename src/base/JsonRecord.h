#pragma once
// Records on JSON. A record says its keys once, in
//     static void describe(auto& self, auto& io) { io.required("key", self.field).optional("other",
//     self.other); }
// and this file reads and writes it. Include it only in the .cpp files that read or write documents: reading
// and writing are templates.
#include <functional>
#include <string>
#include <string_view>

#include "base/JsonReading.h"
#include "base/JsonWriting.h"

namespace quillmar::json {

/// Parses a text of at most 64 MiB and 256 levels and hands out the document, which lasts as long as the
/// call; of a key that is given twice, the last counts. Throws `JsonRecordError` for what is not JSON in
/// UTF-8.
void parse(std::string_view text, const std::function<void(const nlohmann::json& document)>& read);

/// Reads a record from a document's text. Throws `JsonRecordError`.
template <class T>
T decode(std::string_view text) {
    T value = blank<T>();
    parse(text, [&](const nlohmann::json& document) { read(document, value, Place()); });
    return value;
}

/// The record as a document's text: keys sorted, pretty, one line feed at the end. Throws `JsonRecordError`
/// for what JSON cannot hold.
template <class T>
std::string encode(const T& value, std::size_t expectedBytes = 0) {
    Output output(Layout::pretty, expectedBytes);
    write(output, value, Place());
    return output.take() + "\n";
}

/// As `encode`, on one line, without a line feed.
template <class T>
std::string encodeCompact(const T& value) {
    Output output(Layout::compact);
    write(output, value, Place());
    return output.take();
}

}  // namespace quillmar::json
