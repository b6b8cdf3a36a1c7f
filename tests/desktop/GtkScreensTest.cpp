#include "linux/gtk/GtkScreens.h"

#include <gmock/gmock.h>
#include <gtk/gtk.h>

#include "desktop/Desktop.h"
#include "fakes/FakeExecutors.h"

namespace quillmar {
namespace {

Bytes edid(std::uint8_t serial) {
    Bytes block(128);
    const Bytes head{0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00, 0x10, 0xac, 0xc1, 0xa0, serial};
    std::ranges::copy(head, block.begin());
    return block;
}

class GtkScreensTest : public testing::Test {
protected:
    GtkScreensTest() {
        openGtkSession();
        begins();
    }
    /// Another session, with what the last one remembered.
    void begins() {
        screens_.reset();
        screens_ = std::make_unique<GtkScreens>(desktop_.folder() / "state/outputs", files_);
        screens_->setChangeHandler([this] { ++changes_; });
    }
    /// Changes the arrangement and waits until the screens are as many as that and the handler has heard.
    void arrange(const std::string& arguments, const std::function<bool()>& isArranged) {
        changes_ = 0;
        desktop_.arrange(arguments);
        ASSERT_TRUE(turnUntil([&] { return changes_ > 0 && isArranged(); })) << arguments;
    }
    void setEdid(const std::string& connector, const Bytes& bytes) {
        changes_ = 0;
        desktop_.setEdid(connector, bytes);
        ASSERT_TRUE(turnUntil([&] { return changes_ > 0; }));
    }
    Screen named(const std::string& connector) const {
        for (const Screen& screen : screens_->screens()) {
            if (screen.connector == connector) return screen;
        }
        ADD_FAILURE() << connector << " is not there";
        return {};
    }
    std::size_t count() const { return screens_->screens().size(); }

    Desktop desktop_;
    InlineExecutor files_;
    std::unique_ptr<GtkScreens> screens_;
    int changes_ = 0;
};

TEST_F(GtkScreensTest, screensStandInPointsFromThePrimarysBottomLeft) {
    ASSERT_TRUE(turnUntil([&] { return count() == 2; }));
    EXPECT_EQ(named("DUMMY0").frame, (CGRectCodable{0, 0, 1920, 1080}));
    EXPECT_EQ(named("DUMMY1").frame, (CGRectCodable{1920, 56, 1280, 1024}));
    EXPECT_EQ(named("DUMMY1").area, (PixelRect{1920, 0, 1280, 1024}));
    EXPECT_EQ(named("DUMMY1").visibleFrame, named("DUMMY1").frame);
    EXPECT_EQ(named("DUMMY0").scaleFactor, 1);
    EXPECT_EQ(named("DUMMY0").localizedName, "DUMMY0");
    EXPECT_EQ(screens_->primaryScreenNumber(), desktop_.screen("DUMMY0").number);

    arrange("--output DUMMY1 --primary --pos 1920x200", [&] { return named("DUMMY1").frame.x == 0; });
    EXPECT_EQ(named("DUMMY1").frame, (CGRectCodable{0, 0, 1280, 1024}));
    EXPECT_EQ(named("DUMMY0").frame, (CGRectCodable{-1920, 144, 1920, 1080}));
    EXPECT_EQ(screens_->primaryScreenNumber(), desktop_.screen("DUMMY1").number);
}

TEST_F(GtkScreensTest, withoutAPrimaryTheFirstScreenIsIt) {
    arrange("--noprimary", [] { return true; });
    EXPECT_EQ(screens_->primaryScreenNumber(), screens_->screens().front().number);
    EXPECT_NE(screens_->primaryScreenNumber(), 0u);
}

TEST_F(GtkScreensTest, aMonitorKeepsItsIdentityOnAnotherConnectorAndBesideATwin) {
    setEdid("DUMMY0", edid(1));
    setEdid("DUMMY1", edid(2));
    const auto first = named("DUMMY0").uuid;
    const auto second = named("DUMMY1").uuid;
    EXPECT_NE(first, second);
    EXPECT_EQ(named("DUMMY0").localizedName, "DEL A0C1");
    setEdid("DUMMY1", {});
    setEdid("DUMMY0", edid(2));
    EXPECT_EQ(named("DUMMY0").uuid, second);

    setEdid("DUMMY1", edid(2));
    EXPECT_EQ(named("DUMMY0").uuid, second);
    const auto twin = named("DUMMY1").uuid;
    EXPECT_NE(twin, second);
    // Beside another one, in the next session.
    setEdid("DUMMY0", {});
    begins();
    EXPECT_EQ(named("DUMMY1").uuid, twin);
}

TEST_F(GtkScreensTest, panelsLeaveTheRestOfTheScreenVisible) {
    GtkWidget* panel = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_type_hint(GTK_WINDOW(panel), GDK_WINDOW_TYPE_HINT_DOCK);
    gtk_window_set_default_size(GTK_WINDOW(panel), 1920, 40);
    gtk_widget_realize(panel);
    const gulong strut[12] = {0, 0, 40, 0, 0, 0, 0, 0, 0, 1919, 0, 0};
    gdk_property_change(gtk_widget_get_window(panel), gdk_atom_intern("_NET_WM_STRUT_PARTIAL", FALSE),
                        gdk_atom_intern("CARDINAL", FALSE), 32, GDK_PROP_MODE_REPLACE,
                        reinterpret_cast<const guchar*>(strut), 12);
    changes_ = 0;
    gtk_widget_show(panel);
    EXPECT_TRUE(turnUntil([&] { return changes_ > 0 && named("DUMMY0").visibleFrame.height == 1040; }));
    EXPECT_EQ(named("DUMMY0").visibleFrame.y, 0);
    EXPECT_EQ(named("DUMMY0").frame.height, 1080);
    gtk_widget_destroy(panel);
    EXPECT_TRUE(turnUntil([&] { return named("DUMMY0").visibleFrame.height == 1080; }));
}

}  // namespace
}  // namespace quillmar
