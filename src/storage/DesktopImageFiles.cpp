#include "storage/DesktopImageFiles.h"

namespace quillmar {

FilePaths desktopImageFiles(const ScreensProviding& screens, DesktopPicturing& desktop) {
    FilePaths files;
    for (const Screen& screen : screens.screens()) {
        if (auto file = desktop.desktopImage(screen)) files.insert(*std::move(file));
    }
    return files;
}

}  // namespace quillmar
