#pragma once
#include <functional>

namespace quillmar {

/// Hears when a tray of the older kind (XEmbed) comes. Needs a `GtkSession`.
class TrayArrival {
public:
    explicit TrayArrival(std::function<void()> handler);
    TrayArrival(const TrayArrival&) = delete;
    TrayArrival& operator=(const TrayArrival&) = delete;
    ~TrayArrival();

    /// Whether there is one now.
    static bool isThere();

private:
    std::function<void()> handler_;
};

}  // namespace quillmar
