#pragma once
#include <chrono>

#include "async/Executor.h"
#include "async/WaitList.h"
#include "platform/PictureRendering.h"

namespace quillmar {

class RenderProcess;

/// Has each file read by a process of its own, `quillmar-render`, which is held to bounds and can be ended.
/// Captions are drawn here: the fonts are the user's own.
class ProcessPictureRendering final : public PictureRendering {
public:
    struct Limits {
        Duration time = std::chrono::seconds(30);  ///< of one request, once it is its turn
        int requests = 3;                          ///< at a time; further ones wait in line
    };
    /// Files are opened and captions drawn on `executor`. `program` is the path of `quillmar-render`.
    ProcessPictureRendering(Executor& executor, std::filesystem::path program);
    ProcessPictureRendering(Executor& executor, std::filesystem::path program, Limits limits);

    Task<SharedPixels> render(std::filesystem::path source, PictureComposer composer) override;
    Task<SharedPixels> load(std::filesystem::path png, PixelSize size) override;
    Task<bool> isPicture(std::filesystem::path file) override;

    /// Where `quillmar-render` lies: beside the running program, or a folder above it, as for tests.
    static std::filesystem::path installedProgram();

private:
    class Turn;
    template <class T>
    Task<T> inTurn(std::filesystem::path file, std::function<Task<T>()> work);
    template <class T>
    static Task<T> triedTwice(std::function<Task<T>()> work);
    Task<SharedPixels> renderNow(std::filesystem::path source, PictureComposer composer);
    Task<SharedPixels> loadNow(std::filesystem::path png, PixelSize size);
    Task<bool> checkNow(std::filesystem::path file);

    Executor& executor_;
    std::filesystem::path program_;
    Limits limits_;
    int running_ = 0;
    WaitList line_;
};

}  // namespace quillmar
