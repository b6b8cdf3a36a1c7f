#include "settings/ReferencedFiles.h"

#include <ranges>

namespace quillmar {
namespace {

/// Walks through the records as a writer of documents does, so that a new field with a file cannot be
/// forgotten here.
class FileCollector {
public:
    std::set<std::filesystem::path> files;

    template <class T>
    FileCollector& required(std::string_view, const T& value) {
        collect(value);
        return *this;
    }
    template <class T>
    FileCollector& optional(std::string_view, const std::optional<T>& value) {
        if (value) collect(*value);
        return *this;
    }

    template <class T>
    void collect(const T& value) {
        if constexpr (std::is_same_v<T, Url>) {
            if (auto file = value.filePath()) files.insert(*std::move(file));
        } else if constexpr (requires { T::caseNames(); }) {
            std::visit([this](const auto& settings) { this->collect(settings); }, value.value);
        } else if constexpr (requires { T::describe(value, *this); }) {
            T::describe(value, *this);
        } else if constexpr (std::ranges::range<T>) {
            if constexpr (!std::is_arithmetic_v<std::ranges::range_value_t<T>>) {
                for (const auto& element : value) collect(element);
            }
        }
    }
};

void collectModes(FileCollector& collector, const auto& entries) {
    for (const auto& entry : entries) {
        collector.collect(entry.mode);
        for (const auto& [kind, mode] : entry.savedModes) collector.collect(mode);
    }
}

}  // namespace

std::set<std::filesystem::path> referencedFiles(const AppSettings& document) {
    FileCollector collector;
    collectModes(collector, document.wallpaper.displays);
    collectModes(collector, document.lockScreen.displays);
    collectModes(collector, document.screensaver.displays);
    return std::move(collector.files);
}

}  // namespace quillmar
