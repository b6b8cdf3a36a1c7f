#pragma once
#include <functional>
#include <utility>

namespace quillmar {

/// Where the Quit entries of the menus and the command line lead: it marks the request as the user's own wish
/// before the application is asked to end. Main thread.
class ApplicationQuitController {
public:
    explicit ApplicationQuitController(std::function<void()> terminate) : terminate_(std::move(terminate)) {}

    void requestQuit() {
        hasPendingExplicitQuitRequest_ = true;
        terminate_();
    }
    /// Whether the user asked explicitly; asking for it uses the request up.
    bool takePendingExplicitQuitRequest() { return std::exchange(hasPendingExplicitQuitRequest_, false); }

private:
    std::function<void()> terminate_;
    bool hasPendingExplicitQuitRequest_ = false;
};

}  // namespace quillmar
