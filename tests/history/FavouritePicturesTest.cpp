#include "history/FavouritePictures.h"

#include <fstream>

#include "base/FileError.h"
#include "base/Files.h"
#include "fakes/FakePictureRendering.h"
#include "fakes/FullDisk.h"
#include "fakes/TemporaryFolder.h"
#include "history/PictureMetadata.h"
#include "storage/PicturesFolder.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string jpeg = "\xff\xd8\xff\xe0\x00\x04JF\xff\xdbrest"s;
const std::string namespaceOfXmp = "http://ns.adobe.com/xap/1.0/\0"s;

std::string smallestPng() {
    const Bytes bytes = FakePictureRendering::smallestPng({4, 3});
    return {bytes.begin(), bytes.end()};
}

struct FavouritePicturesTest : ::testing::Test {
    TemporaryFolder folder;
    fs::path target = folder.path() / "Pictures/Quillmar";
    ShownPicture picture{
        .credit = {.title = "Sea & <sky>: “1/2”", .author = "Ann", .sourceURL = "https://a.b/c"}};

    void write(const std::string& name, const std::string& bytes) {
        std::ofstream(folder.path() / name) << bytes;
        picture.fileURL = Url::fromFilePath(folder.path() / name);
    }
    std::string kept() { return readFile(keepFavourite(picture, target).file, 1 << 20); }
};

TEST_F(FavouritePicturesTest, aPictureIsCopiedOnceUnderItsTitleWithWhatIsKnownOfItInside) {
    write("remote-12.jpg", jpeg);
    const FavouritePicture first = keepFavourite(picture, target);
    EXPECT_TRUE(first.isNew);
    EXPECT_THAT(first.file.filename().string(), StartsWith("Sea &  sky   “1 2” "));
    EXPECT_EQ(first.file.extension(), ".jpg");
    const std::string packet = xmpPacket(picture.credit);
    const std::size_t length = 2 + namespaceOfXmp.size() + packet.size();
    const std::string segment = "\xff\xe1"s + static_cast<char>(length >> 8) +
                                static_cast<char>(length & 0xff) + namespaceOfXmp + packet;
    EXPECT_EQ(kept(), jpeg.substr(0, 8) + segment + jpeg.substr(8));
    EXPECT_THAT(packet, HasSubstr("Sea &amp; &lt;sky&gt;: “1/2”"));
    EXPECT_THAT(packet, HasSubstr("<dc:source>https://a.b/c</dc:source>"));
    EXPECT_FALSE(keepFavourite(picture, target).isNew);
}

TEST_F(FavouritePicturesTest, aPngGetsAChunkBehindItsHeader) {
    const std::string packet = xmpPacket(picture.credit);
    const std::string content = "XML:com.adobe.xmp"s + std::string(5, '\0') + packet;
    Bytes chunk;
    FakePictureRendering::chunk(chunk, "iTXt", Bytes(content.begin(), content.end()));
    write("a", smallestPng());
    EXPECT_EQ(kept(), smallestPng().insert(33, std::string(chunk.begin(), chunk.end())));
    EXPECT_EQ(keepFavourite(picture, target).file.extension(), ".png");
}

TEST_F(FavouritePicturesTest, otherFilesAreCopiedAsTheyAre) {
    for (const std::string& bytes :
         {"RIFFxxxxWEBP"s, jpeg.substr(0, 2) + "\xff\xe1\x00\x1f"s + namespaceOfXmp + "own",
          smallestPng() + "XML:com.adobe.xmp", "\xff\xd8\xff\xe0\xff\xff cut off"s}) {
        fs::remove_all(target);
        write("a.webp", bytes);
        EXPECT_EQ(kept(), bytes);
        EXPECT_EQ(readFile(keepFavourite(picture, target).file.string() + ".xmp", 1 << 16),
                  xmpPacket(picture.credit));
    }
    picture.credit = {};
    write("holiday 1.jpg", jpeg);
    EXPECT_EQ(kept(), jpeg) << "nothing is known of it";
    EXPECT_THAT(keepFavourite(picture, target).file.filename().string(), StartsWith("holiday 1 "));
    picture.credit.title = "../../etc";
    EXPECT_THAT(keepFavourite(picture, target).file.filename().string(), StartsWith("etc "));
}

TEST_F(FavouritePicturesTest, whatCannotBeCopiedIsNamed) {
    write("a.jpg", jpeg);
    EXPECT_THROW(keepFavourite(picture, folder.path() / "a.jpg"), FileError)
        << "a file in the folder's place";
    fs::remove(folder.path() / "a.jpg");
    EXPECT_THROW(keepFavourite(picture, target), FileError);
    EXPECT_FALSE(fs::exists(target));
    write("a.webp", std::string(2000, 'x'));
    const FullDisk room(1999);
    EXPECT_THROW(keepFavourite(picture, target), FileError);
    EXPECT_TRUE(fs::is_empty(target)) << "nothing half";
}

TEST_F(FavouritePicturesTest, theUsersOwnFolderIsWhereTheDesktopSaysItIs) {
    const std::string home = folder.path();
    Environment environment{{"HOME", home}};
    fs::create_directory(folder.path() / ".config");
    for (const auto& [text, expected] : std::vector<std::pair<std::string, std::string>>{
             {"", home + "/Pictures"},
             {"# XDG_PICTURES_DIR=\"/x\"\nXDG_PICTURES_DIR=\"$HOME/Im\\\"agens\"", home + "/Im\"agens"},
             {"XDG_PICTURES_DIR=\"/media/p\"\nXDG_MUSIC_DIR=\"/m\"\n", "/media/p"},
             {"XDG_PICTURES_DIR=relative\n", home + "/Pictures"}}) {
        std::ofstream(folder.path() / ".config/user-dirs.dirs") << text;
        EXPECT_EQ(userPicturesFolder(environment), expected) << text;
    }
    EXPECT_THROW(userPicturesFolder({}), ApplicationDirectoryError);
}

}  // namespace
}  // namespace quillmar
