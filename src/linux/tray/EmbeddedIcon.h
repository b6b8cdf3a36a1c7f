#pragma once
#include <gtk/gtk.h>

#include <functional>

#include "linux/glib/Signal.h"
#include "linux/tray/PanelIcon.h"

namespace quillmar {

/// The icon as older trays take it: a window of ours inside the tray's (XEmbed). Not to be seen while there
/// is no tray. Needs a `GtkSession`.
class EmbeddedIcon {
public:
    using ClickHandler = std::function<void(StatusIconClick, std::optional<PanelPlace>)>;
    EmbeddedIcon(const PanelIconFiles& files, StatusIconStyle style, ClickHandler clicked);

    void setStyle(StatusIconStyle style);
    bool isInTray() const;

private:
    void draw(int size);
    void released(const GdkEventButton& event);

    const PanelIconFiles& files_;
    StatusIconStyle style_;
    ClickHandler clicked_;
    Ref<GtkStatusIcon> icon_;
    Signal resized_;
    Signal pressed_;
    Signal released_;
    Signal activated_;
    Signal menuAskedFor_;
};

}  // namespace quillmar
