#include "base/ByteCount.h"
#include "fakes/FullDisk.h"
#include "imports/MediaImportFixture.h"

namespace quillmar {
namespace {

using Kind = MediaImportKind;

TEST_F(MediaImportTest, aFileLiesInTheFolderOfItsKindUnderTheNameOfItsContent) {
    isPlayable = [](std::filesystem::path) -> Task<bool> { co_return true; };
    struct Case {
        const char* name;
        Kind kind;
        std::string folder;
        std::string extension;
    };
    for (const Case& c : std::initializer_list<Case>{
             {"A.JPG", Kind::image, "Images", "jpg"},
             {"no extension", Kind::image, "Images", "img"},
             {"a.tar of", Kind::image, "Images", "img"},
             {"a.twelveletter", Kind::image, "Images", "twelveletter"},
             {"a.thirteenletts", Kind::image, "Images", "img"},
             {"b.\xC3\x89\xC3\x89", Kind::image, "Images", "\xC3\xA9\xC3\xA9"},
             {"b.\xFF", Kind::image, "Images", "img"},
             {"c.", Kind::video, "Videos", "video"},
             {"c.MP4", Kind::video, "Videos", "mp4"},
             {"d.txt", Kind::pdf, "PDFs", "pdf"},
         }) {
        std::filesystem::remove_all(cache);
        const Outcome outcome = import(urlOf(write(c.name, "%PDF-1.4")), c.kind);
        ASSERT_TRUE(outcome) << c.name << ": " << outcome.error().what();
        // `printf '%%PDF-1.4' | sha256sum`
        EXPECT_THAT(
            cached(),
            ::testing::ElementsAre(
                c.folder + "/import-e16fa5d9b51928755db85b917f0297babaf22c7a47e97d9212adab56e61ba04e." +
                c.extension))
            << c.name;
        EXPECT_EQ(outcome->filePath(), cache / cached().front()) << c.name;
    }
}

TEST_F(MediaImportTest, aRefusedFileSaysWhyInBothLanguagesAndLeavesNothing) {
    limits = {.maximumImageBytes = 10,
              .maximumVideoBytes = 536870912,
              .maximumPDFBytes = 10,
              .freeSpaceReserveBytes = 5};
    capacity = 13;
    const std::string at = folder.path();
    ::mkfifo((folder.path() / "pipe.png").c_str(), 0600);
    std::filesystem::create_symlink("/dev/zero", folder.path() / "endless.png");
    std::filesystem::create_directory(folder.path() / "folder.png");
    write("large.mkv", "");
    std::filesystem::resize_file(folder.path() / "large.mkv", 536870913);  // sparse
    const auto unreadable = [](const std::string& path) {
        return std::pair("Quillmar could not read the selected file at " + path + ".",
                         "O Quillmar não conseguiu ler o ficheiro escolhido em " + path + ".");
    };
    struct Case {
        Url source;
        Kind kind;
        std::pair<std::string, std::string> message;
    };
    for (const Case& c : std::initializer_list<Case>{
             {*Url::parse("https://example.com/a.png"), Kind::image, unreadable("https://example.com/a.png")},
             {urlOf(at + "/gone.png"), Kind::image, unreadable(at + "/gone.png")},
             {urlOf(at + "/folder.png"), Kind::image, unreadable(at + "/folder.png")},
             {urlOf(at + "/pipe.png"), Kind::image, unreadable(at + "/pipe.png")},
             {urlOf(at + "/endless.png"), Kind::image, unreadable(at + "/endless.png")},
             {urlOf(write("a.png", "")),
              Kind::image,
              {"a.png is not a valid image file.", "a.png não é um ficheiro de imagem válido."}},
             {urlOf(write("a.mp4", "film")),
              Kind::video,
              {"a.mp4 is not a playable video file.",
               "a.mp4 não é um ficheiro de vídeo que se possa reproduzir."}},
             {urlOf(write("a.pdf", "%PDF")),
              Kind::pdf,
              {"a.pdf is not a valid PDF file.", "a.pdf não é um ficheiro PDF válido."}},
             {urlOf(write("b.png", "eleven byte")),
              Kind::image,
              {"b.png exceeds the import size limit of 10 bytes.",
               "b.png excede o limite de tamanho de importação de 10 bytes."}},
             {urlOf(at + "/large.mkv"),
              Kind::video,
              {"large.mkv exceeds the import size limit of 536.9 MB.",
               "large.mkv excede o limite de tamanho de importação de 536,9 MB."}},
             // Its size is said to be 0 until it is read.
             {urlOf("/proc/cpuinfo"),
              Kind::image,
              {"cpuinfo exceeds the import size limit of 10 bytes.",
               "cpuinfo excede o limite de tamanho de importação de 10 bytes."}},
             {urlOf(write("c.png", "nine byte")),
              Kind::image,
              {"There is not enough free disk space to import c.png.",
               "Não há espaço livre suficiente no disco para importar c.png."}},
         }) {
        const Outcome outcome = import(c.source, c.kind);
        ASSERT_FALSE(outcome) << c.message.first;
        EXPECT_EQ(std::pair(outcome.error().message(GeneralLanguage::english),
                            outcome.error().message(GeneralLanguage::portuguese)),
                  c.message);
        EXPECT_THAT(cached(), ::testing::IsEmpty()) << c.message.first;
    }
}

TEST_F(MediaImportTest, whatIsExactlyAsLargeAsAllowedAndAsTheRoomIsAccepted) {
    limits = {.maximumImageBytes = 9, .freeSpaceReserveBytes = 5};
    capacity = 14;
    EXPECT_TRUE(import(urlOf(write("a.png", "nine byte"))));
    capacity.reset();
    EXPECT_TRUE(import(urlOf(write("b.png", "NINE BYTE")))) << "nobody knows how much room there is";
    EXPECT_GT(availableCapacity(folder.path()), 0);
    EXPECT_FALSE(availableCapacity(folder.path() / "gone"));
}

TEST_F(MediaImportTest, aDiskThatFailsIsSaidWithItsReason) {
    const Url picture = urlOf(write("a.png", std::string(9000, 'x')));
    const auto failure = [&] { return import(picture).error().message(GeneralLanguage::portuguese); };
    {
        const FullDisk disk(4096);
        EXPECT_EQ(failure(), "O Quillmar não conseguiu importar a.png: Ficheiro demasiado grande");
    }
    EXPECT_THAT(cached(), ::testing::IsEmpty());
    std::filesystem::create_directories(
        cache / "Images/import-e797e2af6f05c24cdd064793ce60a9d01302d9a3b0e5dff5bb0c046b87f2f668.png/full");
    EXPECT_EQ(failure(), "O Quillmar não conseguiu importar a.png: É uma pasta");
    std::filesystem::remove_all(cache);
    write("Cache", "no folder");
    EXPECT_EQ(failure(), "O Quillmar não conseguiu importar a.png: Não é uma pasta");
}

TEST(ByteCountTest, aSizeIsSaidAsFileManagersSayIt) {
    const std::vector<std::pair<std::int64_t, std::string>> sizes{
        {0, "0 bytes"},          {999, "999 bytes"},        {1000, "1 KB"},
        {999'499, "999 KB"},     {999'500, "1 MB"},         {1'250'000, "1,2 MB"},
        {2147483648, "2,15 GB"}, {21474836480, "21,47 GB"}, {3'000'000'000'000'000, "3 PB"}};
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(byteCountText(bytes, GeneralLanguage::portuguese), text);
}

}  // namespace
}  // namespace quillmar
