#include "storage/LastShownRows.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "base/Files.h"
#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

class LastShownRowsTest : public testing::Test {
protected:
    LastShownRowsTest() {
        std::ofstream(png_) << "a picture";
        pixels_.fill({1, 2, 3});
        LastShownRows::write(rows_, key_, png_, pixels_);
    }
    fs::path file() const { return fs::directory_iterator(rows_)->path(); }
    bool opens() const { return LastShownRows::open(rows_, key_).has_value(); }
    void overwrite(std::streamoff at, std::string_view bytes) const {
        std::fstream stream(file(), std::ios::in | std::ios::out | std::ios::binary);
        stream.seekp(at);
        stream << bytes;
    }

    TemporaryFolder folder_;
    fs::path png_ = folder_.path() / "päper.png";
    fs::path rows_ = folder_.path() / "Cache/rows";
    std::string key_ = "../DP-1";
    PixelBuffer pixels_{{5, 3}};
};

TEST_F(LastShownRowsTest, theLastPictureOfAScreenAloneIsReadBack) {
    LastShownRows::write(rows_, "DP-2", png_, PixelBuffer({1, 1}));
    LastShownRows::write(rows_, "DP-2", png_, PixelBuffer({2, 2}));
    const auto count = std::distance(fs::directory_iterator(rows_), fs::directory_iterator());
    EXPECT_EQ(count, 2) << "one file for each screen, and nothing half written";
    EXPECT_EQ(LastShownRows::open(rows_, "DP-2")->size(), (PixelSize{2, 2}));

    auto opened = LastShownRows::open(rows_, key_);
    ASSERT_TRUE(opened);
    EXPECT_TRUE(opened->fetch());
    EXPECT_EQ(opened->png(), png_);
    EXPECT_EQ(opened->size(), pixels_.size());
    std::vector<std::uint8_t> read(pixels_.byteCount());
    ASSERT_EQ(pread(opened->descriptor(), read.data(), read.size(), LastShownRows::firstRow), 60);
    EXPECT_TRUE(std::ranges::equal(read, pixels_.bytes()));
    EXPECT_FALSE(LastShownRows::open(rows_, "DP-3"));
    EXPECT_THROW(LastShownRows::write(rows_, key_, folder_.path() / "none.png", pixels_), std::system_error);
}

TEST_F(LastShownRowsTest, rowsThatAreNotThoseThatWereWrittenAreFoundWhenTheyAreFetched) {
    const PixelBuffer large({300, 400});
    for (const std::streamoff at : {0, 63, 64, 1 << 18, 300 * 400 * 4 - 1}) {
        LastShownRows::write(rows_, key_, png_, large);
        EXPECT_TRUE(LastShownRows::open(rows_, key_)->fetch());
        overwrite(LastShownRows::firstRow + at, "\1");
        EXPECT_FALSE(LastShownRows::open(rows_, key_)->fetch()) << at;
    }
}

TEST_F(LastShownRowsTest, whatIsNotWholeOrNotOursIsNotShown) {
    const std::string whole = readFile(file(), 1 << 20);
    const fs::path name = file();
    struct Damage {
        const char* what;
        std::function<void()> damage;
    };
    const Damage damages[] = {
        {"cut", [&] { fs::resize_file(name, whole.size() - 1); }},
        {"longer", [&] { fs::resize_file(name, whole.size() + 1); }},
        {"cut header", [&] { fs::resize_file(name, 100); }},
        {"empty", [&] { fs::resize_file(name, 0); }},
        {"foreign", [&] { overwrite(0, "PNG"); }},
        {"another version", [&] { overwrite(8, "\1"); }},
        {"another size", [&] { overwrite(12, "\3"); }},
        {"another path", [&] { overwrite(56, "x"); }},
        {"writable for others", [&] { fs::permissions(name, fs::perms(0622)); }},
        {"another picture", [&] { std::ofstream(png_) << "another one"; }},
        {"no picture", [&] { fs::remove(png_); }},
        {"gone", [&] { fs::remove(name); }},
        {"link",
         [&] {
             fs::rename(name, folder_.path() / "elsewhere");
             fs::create_symlink(folder_.path() / "elsewhere", name);
         }},
        {"fifo",
         [&] {
             fs::remove(name);
             ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
         }},
        {"folder",
         [&] {
             fs::remove(name);
             fs::create_directory(name);
         }},
    };
    for (const auto& [what, damage] : damages) {
        fs::remove_all(rows_);
        std::ofstream(png_) << "a picture";
        LastShownRows::write(rows_, key_, png_, pixels_);
        ASSERT_TRUE(opens()) << what;
        damage();
        EXPECT_FALSE(opens()) << what;
    }
}

}  // namespace
}  // namespace quillmar
