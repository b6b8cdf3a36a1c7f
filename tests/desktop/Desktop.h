#pragma once
#include <gio/gio.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "base/HexColor.h"
#include "base/PixelBuffer.h"
#include "linux/glib/Ref.h"
#include "platform/PictureRendering.h"
#include "platform/Screens.h"

namespace quillmar {

// What the tests do to the desktop that tools/desktop.sh has made for them, as its user would.

/// Runs a program and waits for it; its exit status.
int runProgram(const std::string& command);

/// Opens this process's `GtkSession`, unless it is open.
void openGtkSession();

/// Turns GLib's main loop until `condition` holds; false when it does not within 20 s of real time.
bool turnUntil(const std::function<bool()>& condition);

/// Writes pictures as PPM files, which every desktop reads too.
class PpmEncoding final : public PictureEncoding {
public:
    void writePng(const PixelBuffer& picture, const std::filesystem::path& target) const override;
};
/// Reads such a file back.
SharedPixels ppmPixels(const std::filesystem::path& file);
SharedPixels solidPixels(int width, int height, RgbColor color);

/// A connection of its own to the session bus, under a name that others know it by until it ends.
class OwnConnection {
public:
    explicit OwnConnection(const char* name);
    OwnConnection(const OwnConnection&) = delete;
    OwnConnection& operator=(const OwnConnection&) = delete;
    ~OwnConnection();
    GDBusConnection* get() const { return bus_.get(); }
    /// Lets `called` answer for the one interface of the description, until the connection ends.
    void offer(const char* path, const char* descriptionXml, GDBusInterfaceMethodCallFunc called, void* data);

private:
    Ref<GDBusConnection> bus_;
    std::vector<guint> offered_;
};

/// Another process of this test program, in one of the roles of `desktopMain.cpp`.
class OtherProcess {
public:
    explicit OtherProcess(std::vector<std::string> role);
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    /// Ends the process, if it still runs.
    ~OtherProcess();

    /// The next line that it says, on either output; empty when it has ended.
    std::string line();
    /// Waits for its end: the exit status, or minus the signal's number.
    int wait();

private:
    int process_ = 0;
    int output_ = -1;
};

/// Plays the role that the arguments name, if they name one: its exit status.
std::optional<int> playRole(const std::vector<std::string>& arguments);

/// The desktop as the tests find it and leave it: DUMMY0 1920x1080 primary, DUMMY1 1280x1024 on its right,
/// both without EDID.
class Desktop {
public:
    Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    ~Desktop();

    /// Runs xrandr with these arguments.
    void arrange(const std::string& arguments);
    /// What its monitor says of itself from now on; empty: nothing.
    void setEdid(const std::string& connector, const Bytes& edid);
    /// Enough of a screen to paint on, as it is now.
    Screen screen(const std::string& connector) const;

    /// The colour of a pixel of the root window.
    RgbColor pixel(int x, int y) const;
    /// Every pixel of a part of the root window.
    std::vector<RgbColor> pixels(int x, int y, int width, int height) const;
    /// Memory of all pixmaps in the X server, and the number of its clients, gone ones with pixmaps included.
    std::pair<unsigned long, int> memory() const;

    /// The X server's.
    int serverProcess() const;

    std::filesystem::path folder() const { return folder_; }
    /// A picture file of one colour.
    std::filesystem::path solidPicture(int width, int height, RgbColor color) const;

private:
    struct Connection;
    void reset();

    std::unique_ptr<Connection> connection_;
    std::filesystem::path folder_;
};

}  // namespace quillmar
