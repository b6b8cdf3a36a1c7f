#include <sys/xattr.h>

#include <fstream>

#include "base/FileError.h"
#include "fakes/TemporaryFolder.h"
#include "storage/ApplicationDirectories.h"
#include "storage/LastUsedStamp.h"

namespace quillmar {
namespace {

TEST(LastUsedStampTest, aStampReadsBackAndAnythingElseIsNone) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "picture.png";
    std::ofstream(file) << "x";
    EXPECT_FALSE(lastUsedStamp(file));
    const WallTime time = wallTimeSince1970(1'780'000'000.25);
    stampLastUsed(file, time);
    if (!lastUsedStamp(file)) GTEST_SKIP() << "this file system has no extended attributes";
    EXPECT_EQ(lastUsedStamp(file), time);

    const auto readBack = [&](const std::string& text) {
        ::setxattr(file.c_str(), "user.com.quillmar.cache.last-used", text.data(), text.size(), 0);
        return lastUsedStamp(file);
    };
    EXPECT_TRUE(readBack("0.5"));
    for (const std::string bad : {"", " 5.0", "5.0 ", "5,0", "nan", "inf", "1e300", "soon"}) {
        EXPECT_FALSE(readBack(bad)) << bad;
    }
    EXPECT_FALSE(readBack("5." + std::string(80, '0')));
    stampLastUsed(folder.path() / "gone.png", time);
}

TEST(ApplicationDirectoriesTest, theDataFolderComesFromTheEnvironment) {
    EXPECT_EQ(applicationSupportDirectory({{"XDG_DATA_HOME", "/data"}, {"HOME", "/home/ana"}}),
              "/data/Quillmar");
    EXPECT_EQ(applicationSupportDirectory({{"XDG_DATA_HOME", "data"}, {"HOME", "/home/ana"}}),
              "/home/ana/.local/share/Quillmar");
    EXPECT_THROW(applicationSupportDirectory({{"HOME", ""}}), ApplicationDirectoryError);
}

TEST(ApplicationDirectoriesTest, aDataFolderThatCannotBeMadeIsNamedWithTheReason) {
    const TemporaryFolder folder;
    std::ofstream(folder.path() / "data") << "a file in the way";
    try {
        createdApplicationSupportDirectory({{"XDG_DATA_HOME", folder.path() / "data"}});
        FAIL();
    } catch (const FileError& error) {
        EXPECT_EQ(error.message(GeneralLanguage::portuguese),
                  (folder.path() / "data/Quillmar").string() + ": Não é uma pasta");
        EXPECT_EQ(error.what(), (folder.path() / "data/Quillmar").string() + ": Not a directory");
    }
}

TEST(ApplicationDirectoriesTest, theTemporaryFolderIsTheUsersAlone) {
    const TemporaryFolder folder;
    const auto runtime = folder.path() / "run";
    std::filesystem::create_directory(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    EXPECT_EQ(temporaryDirectory({{"XDG_RUNTIME_DIR", runtime}}), runtime);

    std::filesystem::permissions(runtime, std::filesystem::perms::all);
    const auto own = temporaryDirectory({{"XDG_RUNTIME_DIR", runtime}, {"TMPDIR", folder.path()}});
    EXPECT_EQ(own.parent_path(), folder.path());

    std::filesystem::remove(own);
    std::filesystem::create_directory_symlink(runtime, own);
    EXPECT_THROW(temporaryDirectory({{"TMPDIR", folder.path()}}), ApplicationDirectoryError);
}

}  // namespace
}  // namespace quillmar
