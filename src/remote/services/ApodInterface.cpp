#include "remote/services/ApodInterface.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "base/CalendarDay.h"
#include "base/JsonRecord.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/services/ServiceAnswer.h"

namespace quillmar {
namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr std::string_view currentPath = "/wp-json/wp/v2/apod-basic";
constexpr std::string_view formerPath = "/planetary/apod";

/// "260504"
std::string shortDay(sys_days day) {
    const std::chrono::year_month_day date(day);
    return fmt::format("{:02}{:02}{:02}", static_cast<int>(date.year()) % 100,
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

/// Whether one of the words of the file's name says that it shows a logo.
bool isLogo(const Url& url) {
    const std::string path = lowercased(url.path());
    const std::string name = "-" + replacingNonAlphanumerics(path.substr(path.rfind('/') + 1), '-') + "-";
    return name.contains("-logo-") || name.contains("-nasalogo-");
}

std::optional<Url> pictureAddress(const std::optional<std::string>& text) {
    auto url = webAddress(text);
    return url && !isLogo(*url) ? url : std::nullopt;
}

}  // namespace

APODItem parseAPODItem(std::string_view json) { return json::decode<APODItem>(json); }
std::vector<APODItem> parseAPODItems(std::string_view json) {
    return json::decode<std::vector<APODItem>>(json);
}

Url ApodInterface::newestRequest(const APODSettings& settings) const {
    if (kind_ == Kind::current) {
        return appendingQueryItems(appendingPath(service_.host, currentPath), {{"per_page", "1"}});
    }
    return appendingQueryItems(appendingPath(service_.host, formerPath),
                               {{"api_key", std::string(trimmed(settings.apiKey))}});
}

Url ApodInterface::dayRequest(const APODSettings& settings, sys_days day) const {
    if (kind_ == Kind::current) {
        return appendingPath(service_.host, fmt::format("{}/{}", currentPath, shortDay(day)));
    }
    return appendingQueryItems(newestRequest(settings), {{"date", calendarDayText(day)}});
}

Url ApodInterface::windowRequest(const APODSettings& settings, const APODDateRange& range) const {
    if (kind_ == Kind::current) {
        return appendingQueryItems(
            appendingPath(service_.host, currentPath),
            {{"date_from", shortDay(range.start)}, {"date_to", shortDay(range.end)}, {"per_page", "25"}});
    }
    return appendingQueryItems(newestRequest(settings), {{"start_date", calendarDayText(range.start)},
                                                         {"end_date", calendarDayText(range.end)}});
}

std::optional<APODDateRange> ApodInterface::windowEndingAt(sys_days end) const {
    if (end < firstDay) return std::nullopt;
    const days length(kind_ == Kind::current ? 25 : 30);
    return APODDateRange{std::max(end - length + days(1), firstDay), end};
}

std::optional<APODItem> ApodInterface::parseNewest(std::string_view json) const {
    if (kind_ == Kind::former) return parseAPODItem(json);
    auto items = parseAPODItems(json);
    if (items.empty()) return std::nullopt;
    return std::move(items.front());
}

std::optional<Url> ApodInterface::image(const APODItem& item, bool useHDImage, double widthInPixels) const {
    const auto large = pictureAddress(item.hdurl);
    if (kind_ == Kind::former) {
        const auto plain = pictureAddress(item.url);
        return useHDImage ? (large ? large : plain) : (plain ? plain : large);
    }
    if (!large || useHDImage) return large;
    const long long width = std::max(std::llround(widthInPixels), 1LL);
    return appendingQueryItems(*large, {{"w", std::to_string(width)}});
}

std::optional<APODItem> ApodInterface::newestPicture(const std::vector<APODItem>& items) const {
    const APODItem* newest = nullptr;
    for (const APODItem& item : items) {
        const bool isUsable = item.mediaType == "image" && item.date >= calendarDayText(firstDay) &&
                              image(item, true, 1).has_value();
        if (isUsable && (!newest || item.date > newest->date)) newest = &item;
    }
    if (!newest) return std::nullopt;
    return *newest;
}

}  // namespace quillmar
