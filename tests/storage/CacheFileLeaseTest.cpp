#include "storage/CacheFileLease.h"

#include <fstream>
#include <thread>

#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

struct CacheFileLeaseTest : ::testing::Test {
    TemporaryFolder folder;
    fs::path root = resolvedPath(folder.path());
    CacheFileProtection protection;

    fs::path file(const fs::path& name) {
        fs::create_directories((root / name).parent_path());
        std::ofstream(root / name) << "x";
        return root / name;
    }
};

TEST_F(CacheFileLeaseTest, aFileStaysUntilTheLastCopyOfItsLeaseEnds) {
    const fs::path picture = file("picture.png");
    {
        std::optional<CacheFileLease> lease(std::in_place, protection, picture);
        const CacheFileLease copy = *lease;
        EXPECT_EQ(copy, *lease);
        EXPECT_NE(copy, CacheFileLease(protection, picture)) << "another lease on the same file";
        lease.reset();
        EXPECT_FALSE(protection.removeIfFree(picture));
    }
    EXPECT_TRUE(protection.removeIfFree(picture));
    EXPECT_FALSE(protection.removeIfFree(picture)) << "it is gone already";
}

TEST_F(CacheFileLeaseTest, aFolderLeaseCoversAllBelowItAndNoSiblingOfALikeName) {
    const CacheFileLease lease(protection, root / "Images/", true);
    EXPECT_FALSE(protection.removeIfFree(file("Images/a.png")));
    EXPECT_FALSE(protection.removeIfFree(file("Images/deep/b.png")));
    EXPECT_TRUE(protection.removeIfFree(file("Images2/c.png")));
    const CacheFileLease fileLease(protection, root / "Videos");
    EXPECT_TRUE(protection.removeIfFree(file("Videos/d.mp4"))) << "that lease is no folder's";
}

TEST_F(CacheFileLeaseTest, aLeaseThroughLinksAndDotsIsOnTheFileThatTheyLeadTo) {
    const fs::path picture = file("Images/a.png");
    fs::create_directory_symlink(root / "Images", root / "link");
    for (const char* way : {"link/a.png", "Images/../Images/./a.png", "Images//a.png"}) {
        const CacheFileLease lease(protection, root / way);
        EXPECT_EQ(lease.path(), picture) << way;
        EXPECT_FALSE(protection.removeIfFree(picture)) << way;
    }
    const CacheFileLease early(protection, root / "link/later.png");
    EXPECT_FALSE(protection.removeIfFree(file("Images/later.png"))) << "made after its lease was taken";
}

TEST_F(CacheFileLeaseTest, aFileThatIsThereOnceItsLeaseIsTakenStaysForAsLongAsTheLease) {
    for (int round = 0; round < 300; ++round) {
        const fs::path picture = file("picture.png");
        bool isRemoved = false;
        std::thread sweep([&] { isRemoved = protection.removeIfFree(picture); });
        const CacheFileLease lease(protection, picture);
        const bool isThere = fs::exists(picture);
        sweep.join();
        ASSERT_EQ(isRemoved, !isThere);
        ASSERT_EQ(fs::exists(picture), isThere);
    }
}

}  // namespace
}  // namespace quillmar
