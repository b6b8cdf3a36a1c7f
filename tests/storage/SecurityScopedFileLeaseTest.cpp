#include "storage/SecurityScopedFileLease.h"

#include <fstream>

#include "fakes/TemporaryFolder.h"
#include "storage/StoredFileGrant.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Case = SecurityScopedFileAccessError::Case;

struct SecurityScopedFileLeaseTest : ::testing::Test {
    TemporaryFolder folder;
    fs::path file = folder.path() / "holiday ã.jpg";
    Url url = Url::fromFilePath(file);

    void SetUp() override { std::ofstream(file) << "x"; }
    fs::path resolved(const Bytes& grant) const {
        return SecurityScopedFileLease(url, grant).url().filePath().value();
    }
    std::optional<Case> failure(const Bytes& grant, FileReadable isReadable = isReadableFile) const {
        try {
            SecurityScopedFileLease(url, grant, isReadable);
        } catch (const SecurityScopedFileAccessError& error) {
            EXPECT_EQ(error.url(), url);
            return error.errorCase();
        }
        return std::nullopt;
    }
};

TEST_F(SecurityScopedFileLeaseTest, aGrantFindsItsFileOrFolderAfterARenameWithinTheFolder) {
    const Bytes grant = makeStoredFileGrant(file);
    EXPECT_TRUE(SecurityScopedFileLease(url, grant).didStartAccess());
    EXPECT_EQ(resolved(grant), file);
    fs::rename(file, folder.path() / "renamed.jpg");
    EXPECT_EQ(resolved(grant), folder.path() / "renamed.jpg");
    std::ofstream(file) << "saved anew by an editor";
    EXPECT_EQ(resolved(grant), file) << "the path comes first";

    fs::create_directory(folder.path() / "pictures");
    const Bytes folderGrant = makeStoredFileGrant(folder.path() / "pictures");
    fs::rename(folder.path() / "pictures", folder.path() / "paintings");
    EXPECT_EQ(resolved(folderGrant), folder.path() / "paintings");
}

TEST_F(SecurityScopedFileLeaseTest, aFileThatIsDeletedOrMovedAwayIsLostUnderTheUrlThatWasGiven) {
    const Bytes grant = makeStoredFileGrant(file);
    fs::create_directory(folder.path() / "elsewhere");
    fs::rename(file, folder.path() / "elsewhere/holiday.jpg");
    EXPECT_EQ(failure(grant), Case::invalidBookmark);
    // A file that is deleted in the very tick of the file system's clock in which it was made is a test's
    // alone.
    const fs::path tick = folder.path() / "tick";
    do {
        std::ofstream(tick) << "x";
    } while (fs::last_write_time(tick) == fs::last_write_time(folder.path() / "elsewhere/holiday.jpg"));
    fs::remove(folder.path() / "elsewhere/holiday.jpg");
    for (int i = 0; i < 20; ++i) std::ofstream(folder.path() / ("other" + std::to_string(i))) << "x";
    EXPECT_EQ(failure(grant), Case::invalidBookmark) << "the next file may have got its inode";
    EXPECT_THROW(makeStoredFileGrant(file), std::system_error);
}

TEST_F(SecurityScopedFileLeaseTest, bytesThatAreNoGrantAreInvalid) {
    for (const std::string text : {"", "bplist00", "{}", "[]", "\xff",
                                   "{\"uri\":\"https://a/b\",\"identity\":{\"device\":1,\"inode\":2}}",
                                   "{\"uri\":\"file:///\",\"identity\":{\"device\":-1,\"inode\":2}}"}) {
        EXPECT_EQ(failure(Bytes(text.begin(), text.end())), Case::invalidBookmark) << text;
    }
}

TEST_F(SecurityScopedFileLeaseTest, aFileThatMustNotBeReadIsDeniedAndTheUserIsToldWhatToDo) {
    EXPECT_EQ(failure(makeStoredFileGrant(file), [](const fs::path&) { return false; }), Case::accessDenied);
    const auto text = [&](Case errorCase, GeneralLanguage language) {
        return SecurityScopedFileAccessError(errorCase, url).message(language);
    };
    EXPECT_EQ(text(Case::invalidBookmark, GeneralLanguage::english),
              "Quillmar can no longer access " + file.string() + ". Choose the file again.");
    EXPECT_EQ(text(Case::accessDenied, GeneralLanguage::english),
              "The system denied access to " + file.string() + ". Choose the file again.");
}

}  // namespace
}  // namespace quillmar
