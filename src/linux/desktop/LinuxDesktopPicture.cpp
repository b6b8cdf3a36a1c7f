#include "linux/desktop/LinuxDesktopPicture.h"

#include "diagnostics/Log.h"
#include "linux/desktop/DesktopCall.h"
#include "linux/desktop/PlasmaDesktopPicture.h"
#include "linux/desktop/XfceDesktopPicture.h"

namespace quillmar {

namespace {

using Case = DesktopPictureError::Case;

}  // namespace

LinuxDesktopPicture::LinuxDesktopPicture(Executor& pool, const PictureEncoding& encoding,
                                         Environment environment, std::filesystem::path captureFolder)
    : pool_(pool), environment_(std::move(environment)), root_(pool, encoding, std::move(captureFolder)) {}

Task<DesktopMethods> LinuxDesktopPicture::methods() {
    const TaskLock::Hold turn = co_await finding_.acquire();
    if (!isFound_) co_await find();
    isFound_ = true;
    if (!own_ && !spanned_ && isWaylandSession(environment_)) throw DesktopPictureError(Case::noWay, "", "");
    co_return DesktopMethods{own_ ? *own_ : root_, spanned_.get()};
}

Task<void> LinuxDesktopPicture::find() {
    for (const NamedDesktop& desktop : namedDesktops(environment_)) {
        const bool isThere = co_await answers(desktop);
        if (isThere) co_return;
    }
}

Task<bool> LinuxDesktopPicture::answers(NamedDesktop desktop) {
    if (desktop.family == DesktopFamily::gnome) {
        spanned_ = co_await GnomeBackground::open(desktop.schema, pool_);
        co_return spanned_ != nullptr;
    }
    try {
        co_return co_await answersOnBus(desktop.family);
    } catch (const BusSilence&) {
        throw DesktopPictureError(Case::noAnswer, std::string(desktop.name), "");
    } catch (const std::runtime_error&) {
        logWarning("The session bus cannot be reached.", "wallpaper", std::current_exception());
        co_return false;
    }
}

Task<bool> LinuxDesktopPicture::answersOnBus(DesktopFamily family) {
    const Bus bus = co_await sessionBusWithin(std::chrono::milliseconds(desktopAnswerMilliseconds));
    if (family == DesktopFamily::xfce) {
        const bool isThere = co_await XfceDesktopPicture::answers(bus);
        if (isThere) own_ = std::make_unique<XfceDesktopPicture>(bus, root_, pool_);
    } else {
        const bool isThere = co_await PlasmaDesktopPicture::answers(bus);
        if (isThere) own_ = std::make_unique<PlasmaDesktopPicture>(bus, root_, pool_);
    }
    co_return own_ != nullptr;
}

}  // namespace quillmar
