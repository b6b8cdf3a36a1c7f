#include "panes/wallpaper/ModeEditor.h"

#include <algorithm>

#include "base/HexColor.h"
#include "base/IsAmong.h"
#include "panes/wallpaper/FieldChange.h"
#include "panes/wallpaper/FieldRows.h"

namespace quillmar {
namespace {

using Case = WallpaperApplicationError::Case;

/// Gives a visitor of fields to the mode's record.
void describe(auto& mode, auto& visitor) {
    std::visit(
        [&]<class Settings>(Settings& settings) {
            if constexpr (!std::is_same_v<std::remove_const_t<Settings>, std::monostate>)
                std::remove_const_t<Settings>::describe(settings, visitor);
        },
        mode.value);
}

bool isShown(const FieldText& text, const WallpaperMode& mode) {
    if (!text.need) return true;
    FieldHas need(*text.need);
    describe(mode, need);
    return need.isSo;
}

/// A colour that is none counts as black where it is drawn, but nobody means that.
std::optional<WallpaperApplicationError> backgroundProblem(const WallpaperMode& mode) {
    const auto look = mode.imagePresentation();
    if (!look || isHexColor(look->backgroundHexColor)) return std::nullopt;
    return WallpaperApplicationError(Case::invalidSolidColor, look->backgroundHexColor);
}

/// The field's row, the first of several.
std::string rowFor(const WallpaperMode& mode, const FieldText& text) {
    FieldRows rows(text, GeneralLanguage::english);
    describe(mode, rows);
    return rows.rows.empty() ? std::string() : rows.rows.front().id;
}

}  // namespace

std::optional<ModeProblem> problemOf(const WallpaperMode& mode, GeneralLanguage language) {
    // A file that cannot be read is said when it is tried: it may be there again by then.
    const auto error = mode.validationError([](const auto&) { return true; });
    if (!error) {
        const auto background = backgroundProblem(mode);
        if (!background) return std::nullopt;
        return ModeProblem{background->message(language), "backgroundHexColor"};
    }
    ModeProblem problem{error->message(language), {}};
    for (const FieldGroupText& group : fieldGroups(mode.kind())) {
        for (const FieldText& text : group.fields) {
            if (problem.row.empty() && isAmong(error->errorCase(), text.problems) && isShown(text, mode))
                problem.row = rowFor(mode, text);
        }
    }
    return problem;
}

std::vector<SettingsGroup> editorGroups(const WallpaperMode& mode, GeneralLanguage language,
                                        const std::function<bool(const std::string&)>& isFolded) {
    const auto problem = problemOf(mode, language);
    std::vector<SettingsGroup> groups;
    for (const FieldGroupText& texts : fieldGroups(mode.kind())) {
        SettingsGroup group{.id = std::string(texts.id), .title = localized(texts.title, language)};
        for (const FieldText& text : texts.fields) {
            if (!isShown(text, mode)) continue;
            FieldRows rows(text, language);
            describe(mode, rows);
            std::ranges::move(rows.rows, std::back_inserter(group.rows));
        }
        if (group.rows.empty()) continue;
        for (SettingsRow& row : group.rows) {
            if (problem && row.id == problem->row) row.error = problem->message;
        }
        const bool hasProblem =
            std::ranges::any_of(group.rows, [](const auto& r) { return !r.error.empty(); });
        if (texts.isFolded) group.isExpanded = hasProblem || !isFolded(group.id);
        groups.push_back(std::move(group));
    }
    return groups;
}

bool change(WallpaperMode& mode, const SettingsIntent& intent) {
    const std::string_view row = intent.row;
    const std::string_view field = row.substr(0, row.find('.'));
    const std::string_view member = field.size() < row.size() ? row.substr(field.size() + 1) : "";
    for (const FieldGroupText& group : fieldGroups(mode.kind())) {
        const auto text = std::ranges::find(group.fields, field, &FieldText::field);
        if (text == group.fields.end() || !isShown(*text, mode)) continue;
        const WallpaperMode before = mode;
        FieldChange changing(field, member, intent.value);
        describe(mode, changing);
        return mode != before;
    }
    return false;
}

}  // namespace quillmar
