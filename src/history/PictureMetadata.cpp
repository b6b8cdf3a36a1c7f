#include "history/PictureMetadata.h"

#include "base/Crc32.h"

namespace quillmar {
namespace {

constexpr std::string_view jpegStart = "\xff\xd8\xff";
constexpr std::string_view pngStart = "\x89PNG\r\n\x1a\n";
/// The signature and the header, which has a size that never changes.
constexpr std::size_t pngHeaderEnd = 8 + 25;
constexpr std::string_view pngKeyword = "XML:com.adobe.xmp";
using namespace std::string_view_literals;
constexpr std::string_view jpegKeyword = "http://ns.adobe.com/xap/1.0/\0"sv;

std::string escaped(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        if (byte == '&')
            result += "&amp;";
        else if (byte == '<')
            result += "&lt;";
        else if (byte == '>')
            result += "&gt;";
        else if (static_cast<unsigned char>(byte) < 0x20)
            result += ' ';  // most of these are not XML, in whatever way they are written
        else
            result += byte;
    }
    return result;
}

std::string bigEndian(std::size_t number, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>(number >> (8 * i) & 0xff);
    return text;
}

std::size_t byteAt(std::string_view file, std::size_t at) { return static_cast<unsigned char>(file[at]); }

/// Behind the segments that readers want to see first; nothing where one of them is such a packet.
std::optional<std::size_t> placeInJpeg(std::string_view file) {
    std::size_t at = 2;
    while (at + 4 <= file.size() && byteAt(file, at) == 0xff &&
           (byteAt(file, at + 1) == 0xe0 || byteAt(file, at + 1) == 0xe1)) {
        if (file.substr(at + 4).starts_with(jpegKeyword)) return std::nullopt;
        at += 2 + (byteAt(file, at + 2) << 8 | byteAt(file, at + 3));
    }
    return at < file.size() ? std::optional(at) : std::nullopt;
}

std::string inserted(std::string_view file, std::size_t at, const std::string& part) {
    return std::string(file.substr(0, at)) + part + std::string(file.substr(at));
}

std::string pngChunk(const std::string& packet) {
    // Not compressed, in no language.
    const std::string content = "iTXt" + std::string(pngKeyword) + std::string(5, '\0') + packet;
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    return bigEndian(content.size() - 4, 4) + content + bigEndian(crc32(bytes), 4);
}

}  // namespace

std::string xmpPacket(const PictureCredit& credit) {
    std::string items;
    const auto add = [&](std::string_view before, const std::optional<std::string>& text,
                         std::string_view after) {
        if (text) items += std::string(before) + escaped(*text) + std::string(after) + "\n";
    };
    constexpr std::string_view item = "<rdf:li xml:lang=\"x-default\">";
    add("<dc:title><rdf:Alt>" + std::string(item), credit.title, "</rdf:li></rdf:Alt></dc:title>");
    add("<dc:creator><rdf:Seq><rdf:li>", credit.author, "</rdf:li></rdf:Seq></dc:creator>");
    add("<dc:source>", credit.sourceURL, "</dc:source>");
    add("<dc:rights><rdf:Alt>" + std::string(item), credit.licence, "</rdf:li></rdf:Alt></dc:rights>");
    return "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
           "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n" +
           items + "</rdf:Description>\n</rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>\n";
}

std::optional<std::string> withXmp(std::string_view file, const std::string& packet) {
    const std::string_view kind = extensionOf(file);
    if (kind == "png" && file.size() > pngHeaderEnd && !file.contains(pngKeyword))
        return inserted(file, pngHeaderEnd, pngChunk(packet));
    const std::size_t length = 2 + jpegKeyword.size() + packet.size();
    const auto place = kind == "jpg" && length <= 0xffff ? placeInJpeg(file) : std::nullopt;
    if (!place) return std::nullopt;
    return inserted(file, *place, "\xff\xe1" + bigEndian(length, 2) + std::string(jpegKeyword) + packet);
}

std::string_view extensionOf(std::string_view file) {
    return file.starts_with(jpegStart) ? "jpg" : file.starts_with(pngStart) ? "png" : "";
}

}  // namespace quillmar
