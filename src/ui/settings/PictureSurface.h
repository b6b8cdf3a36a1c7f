#pragma once
#include <cairo.h>

#include "platform/SettingsDisplays.h"

namespace quillmar {

/// Draws the picture over the whole of that room, scaled; nothing where there is none.
void drawPicture(cairo_t* cr, const SettingsPicture& picture, double width, double height);

/// The outline of a rectangle with round corners.
void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius);

}  // namespace quillmar
