#pragma once
#include <filesystem>
#include <map>
#include <string>

#include "async/Timer.h"
#include "desktop/DesktopPictures.h"

namespace quillmar {

/// Keeps what each display shows as plain rows, so that the next start can paint it before anything large is
/// loaded: of a picture that has stood for a while, and of what is shown at the end. Rows are large, so those
/// of a display are written at most every half hour in between. Only for a desktop that forgets its pictures
/// with the session. Main thread.
class LastShownKeeper {
public:
    static constexpr std::chrono::seconds quietTime{60};
    static constexpr std::chrono::minutes shortestInterval{30};
    /// Nobody waits longer for it at the end.
    static constexpr std::chrono::milliseconds longestEnd{600};

    struct Services {
        MainLoop& loop;
        DesktopPictures& pictures;
        const DisplayService& displays;
        PictureRendering& rendering;
        PictureWriter& writer;
        Executor& executor;
        std::filesystem::path folder;
    };
    explicit LastShownKeeper(Services services) : services_(std::move(services)), tasks_(services_.loop) {}

    void start();
    /// Keeps what is not kept yet, as far as time allows.
    Task<void> stop();

private:
    struct Display {
        explicit Display(MainLoop& loop) : timer(loop) {}
        std::filesystem::path kept;  ///< whose rows are there
        TimePoint keptAt{};
        OneShotTimer timer;
    };
    void didShow(const std::string& displayID);
    Task<void> keep(std::string displayID);
    /// Of a display that is no longer the program's.
    Task<void> forget(std::string displayID);
    Task<void> keepAll();

    Services services_;
    std::map<std::string, Display> shown_;
    TaskScope tasks_;
};

}  // namespace quillmar
