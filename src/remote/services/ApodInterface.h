#pragma once
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "modes/DailyImageSettings.h"
#include "remote/fetching/RemoteServices.h"

namespace quillmar {

/// What the service says of a day. Its texts are fragments of HTML.
struct APODItem {
    std::string date;  ///< "2026-05-04"
    std::optional<std::string> title;
    std::optional<std::string> url;
    std::optional<std::string> hdurl;
    std::string mediaType;
    std::optional<std::string> permalink;
    std::optional<std::string> credit;
    std::optional<std::string> copyright;

    static void describe(auto& self, auto& io) {
        io.required("date", self.date)
            .optional("title", self.title)
            .optional("url", self.url)
            .optional("hdurl", self.hdurl)
            .required("media_type", self.mediaType)
            .optional("permalink", self.permalink)
            .optional("credit", self.credit)
            .optional("copyright", self.copyright);
    }
};
/// Throw `JsonRecordError`.
APODItem parseAPODItem(std::string_view json);
std::vector<APODItem> parseAPODItems(std::string_view json);

/// Days of the calendar in UTC, both ends inside.
struct APODDateRange {
    std::chrono::sys_days start;
    std::chrono::sys_days end;
};

/// How the service is asked: as it is now, or, where a configuration still names it, as it was before: with
/// a key, and with pictures where there are pages now. The former one says of days that it has lost that
/// they are a logo.
class ApodInterface {
public:
    enum class Kind { current, former };
    static constexpr std::chrono::sys_days firstDay = std::chrono::year(2010) / 1 / 1;

    ApodInterface(Kind kind, RemoteService service) : kind_(kind), service_(std::move(service)) {}
    const RemoteService& service() const { return service_; }

    Url newestRequest(const APODSettings& settings) const;
    Url dayRequest(const APODSettings& settings, std::chrono::sys_days day) const;
    Url windowRequest(const APODSettings& settings, const APODDateRange& range) const;
    /// As many days as one request may ask for, none before the first one; nothing when no day is left.
    std::optional<APODDateRange> windowEndingAt(std::chrono::sys_days end) const;
    /// The item that `newestRequest` is answered with; nothing when there is none. Throws `JsonRecordError`.
    std::optional<APODItem> parseNewest(std::string_view json) const;

    /// The picture of a day, for a display of so many pixels; nothing when the day has none.
    std::optional<Url> image(const APODItem& item, bool useHDImage, double widthInPixels) const;
    /// The newest of the items that are pictures; nothing when none is.
    std::optional<APODItem> newestPicture(const std::vector<APODItem>& items) const;

private:
    Kind kind_;
    RemoteService service_;
};

}  // namespace quillmar
