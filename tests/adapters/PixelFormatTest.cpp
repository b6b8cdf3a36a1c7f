#include "linux/x11/PixelFormat.h"

#include <gmock/gmock.h>

#include "base/Bytes.h"
#include "linux/x11/X11Connection.h"

namespace quillmar {
namespace {

using testing::ElementsAre;

constexpr PixelFormat::Layout plain{};
constexpr PixelFormat::Layout bigEndian{4, false, 0xff0000, 0xff00, 0xff};
constexpr PixelFormat::Layout reversed{4, true, 0xff, 0xff00, 0xff0000};
constexpr PixelFormat::Layout threeBytes{3, true, 0xff0000, 0xff00, 0xff};
constexpr PixelFormat::Layout highColor{2, true, 0xf800, 0x07e0, 0x001f};
constexpr PixelFormat::Layout deepColor{4, true, 0x3ff00000, 0xffc00, 0x3ff};

struct Case {
    const char* name;
    PixelFormat::Layout layout;
    Bytes packed;  ///< red 0xff, green 0x80, blue 0
    std::uint8_t greenBack = 0x80;
};

TEST(PixelFormatTest, coloursSurviveTheWayToTheServerAndBack) {
    const Case cases[] = {
        {"plain", plain, {0x00, 0x80, 0xff, 0x00}},
        {"big endian", bigEndian, {0x00, 0xff, 0x80, 0x00}},
        {"reversed", reversed, {0xff, 0x80, 0x00, 0x00}},
        {"three bytes", threeBytes, {0x00, 0x80, 0xff}},
        {"high colour", highColor, {0x00, 0xfc}, 0x82},
        {"deep colour", deepColor, {0x00, 0x08, 0xf8, 0x3f}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const PixelFormat format(c.layout);
        Bytes packed(c.packed.size());
        format.pack(Bytes{0x00, 0x80, 0xff, 0x00}, packed);
        EXPECT_EQ(packed, c.packed);
        Bytes back(4);
        format.unpack(packed, back);
        EXPECT_THAT(back, ElementsAre(0x00, c.greenBack, 0xff, 0x00));
    }
}

TEST(PixelFormatTest, serversWithoutTrueColoursAreRefused) {
    EXPECT_THROW(PixelFormat({1, true, 0xe0, 0x1c, 0x03}), X11Failure);
    EXPECT_THROW(PixelFormat({4, true, 0, 0, 0}), X11Failure);
    EXPECT_THROW(PixelFormat({4, true, 0xf0f, 0xff000, 0xff}), X11Failure);
}

}  // namespace
}  // namespace quillmar
