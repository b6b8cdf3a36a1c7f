#include "linux/glib/InotifyFileWatch.h"

#include <glib.h>
#include <gmock/gmock.h>

#include <fstream>

#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

TEST(InotifyFileWatchTest, everyWayToChangeAFileIsToldAndWhatHappensBesideItIsNot) {
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "data/settings.json";
    const fs::path target = folder.path() / "dots/kept.json";
    const auto put = [](const fs::path& path) { std::ofstream(path) << "x"; };
    const auto replace = [&](const fs::path& path) {
        put(path.string() + ".new");
        fs::rename(path.string() + ".new", path);
    };
    InotifyFileWatch watch;
    int calls = 0;
    watch.watch(file, [&] { ++calls; });
    const auto isTold = [&](const std::function<void()>& change) {
        const int before = calls;
        change();
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
        return calls > before;
    };
    using Change = std::function<void()>;
    EXPECT_TRUE(isTold([&] { fs::create_directories(file.parent_path()); })) << "its folder comes";
    const std::vector<std::pair<const char*, Change>> changes = {
        {"made", [&] { put(file); }},
        {"written in place", [&] { put(file); }},
        {"replaced", [&] { replace(file); }},
        {"its rights", [&] { fs::permissions(file, fs::perms::none); }},
        {"removed", [&] { fs::remove(file); }},
        {"a folder in its place", [&] { fs::create_directory(file); }},
        {"gone with its folder", [&] { fs::rename(file.parent_path(), folder.path() / "away"); }},
        {"back", [&] { fs::rename(folder.path() / "away", file.parent_path()); }},
        {"a link in its place",
         [&] {
             fs::remove(file);
             fs::create_symlink(target, file);
         }},
        {"its target's folder", [&] { fs::create_directories(target.parent_path()); }},
        {"its target", [&] { put(target); }},
        {"its target replaced", [&] { replace(target); }},
    };
    for (const auto& [name, change] : changes) {
        EXPECT_TRUE(isTold(change)) << name;
        EXPECT_FALSE(isTold([&] { put(file.parent_path() / "other.json"); })) << name;
    }
    watch.watch({}, {});
    EXPECT_FALSE(isTold([&] { replace(target); }));
}

}  // namespace
}  // namespace quillmar
