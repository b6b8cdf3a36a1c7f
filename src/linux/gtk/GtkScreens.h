#pragma once
#include <filesystem>
#include <memory>

#include "async/Executor.h"
#include "platform/Screens.h"

namespace quillmar {

/// The screens as GDK and RandR have them. Needs a `GtkSession`.
class GtkScreens final : public ScreensProviding {
public:
    /// Which monitor is which is remembered in the file `identities`, whose folder is made when needed; it is
    /// read here and written on `files`.
    GtkScreens(std::filesystem::path identities, Executor& files);
    GtkScreens(const GtkScreens&) = delete;
    GtkScreens& operator=(const GtkScreens&) = delete;
    ~GtkScreens() override;

    std::vector<Screen> screens() const override;
    std::uint32_t primaryScreenNumber() const override;
    void setChangeHandler(std::function<void()> handler) override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace quillmar
