#include "panes/wallpaper/ModeLabels.h"

#include "base/Enum.h"

namespace quillmar {
namespace {

/// `labels` in the order of the cases.
template <NamedEnum E, std::size_t count>
std::string pick(const std::array<TextKey, count>& labels, E value, GeneralLanguage language) {
    static_assert(count == allCases<E>().size(), "a case has no label");
    return localized(labels[static_cast<std::size_t>(value)], language);
}

}  // namespace

std::string labelOf(ImagePresentationLayout value, GeneralLanguage language) {
    return pick(std::array{"Center"_key, "Tile"_key, "Stretch"_key, "Fit"_key, "Fill"_key}, value, language);
}

std::string labelOf(NasaEpicPresentation value, GeneralLanguage language) {
    return pick(std::array{"The latest picture"_key, "The last days, one picture after the other"_key}, value,
                language);
}

std::string labelOf(NasaEpicImageProduct value, GeneralLanguage language) {
    return pick(std::array{"Natural"_key, "Enhanced"_key}, value, language);
}

std::string labelOf(WallhavenSorting value, GeneralLanguage language) {
    return pick(std::array{"Date"_key, "Relevance"_key, "Random order"_key, "Views"_key, "Favorites"_key,
                           "Toplist"_key},
                value, language);
}

std::string labelOf(WallhavenOrder value, GeneralLanguage language) {
    return pick(std::array{"Descending"_key, "Ascending"_key}, value, language);
}

std::string labelOf(WallhavenTopRange value, GeneralLanguage language) {
    return pick(std::array{"One day"_key, "Three days"_key, "One week"_key, "One month"_key,
                           "Three months"_key, "Six months"_key, "One year"_key},
                value, language);
}

std::string labelOf(WallhavenResolutionMode value, GeneralLanguage language) {
    return pick(std::array{"Any"_key, "At least"_key, "Exactly"_key}, value, language);
}

std::string labelOf(UnsplashFilter value, GeneralLanguage language) {
    return pick(std::array{"A topic"_key, "A user"_key, "A search"_key}, value, language);
}

std::string labelOf(MuseumsSource value, GeneralLanguage) { return std::string(displayText(value)); }

std::string labelOf(MuseumsArtworkCategory value, GeneralLanguage language) {
    return pick(std::array{"Paintings"_key, "Photography"_key, "Drawings and prints"_key, "Sculpture"_key},
                value, language);
}

}  // namespace quillmar
