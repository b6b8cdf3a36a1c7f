#include "storage/DesktopImageFiles.h"

namespace quillmar {

FilePaths desktopImageFiles(const ScreensProviding& screens, DesktopPicturing& desktop) {
    FilePaths files;
    for (const Screen& screen : screens.screens()) {
        (void)desktop; (void)screen;
    }
    return files;
}

}  // namespace quillmar
