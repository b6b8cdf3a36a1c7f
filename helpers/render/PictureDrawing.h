#pragma once
#include <memory>

#include "render/CanvasDrawing.h"
#include "render/PictureDecoder.h"
#include "render/UprightRows.h"

namespace quillmar {

/// One picture on its way to a canvas, as a stream of rows, so that it is hardly ever in memory whole:
/// decoded, resampled and, where its colours need that, converted on threads of their own.
class PictureDrawing {
public:
    explicit PictureDrawing(std::unique_ptr<PictureDecoder> decoder);

    /// As it is to be looked at.
    PixelSize size() const;
    /// Once. Throws `PictureDecodingError`, and `std::invalid_argument` for a composition without a place for
    /// the picture.
    void drawOn(const CanvasPixels& canvas, const PictureComposition& composition);
    /// Decodes the whole picture, as small as that can be done. Instead of `drawOn`. Throws
    /// `PictureDecodingError`.
    void check();

private:
    std::unique_ptr<RowSource> visibleRows(const PictureComposition& composition, const VisiblePart& part);

    std::unique_ptr<PictureDecoder> decoder_;
    PictureOrientation orientation_;
};

/// Fills the canvas with a PNG file of exactly its size. Throws `PictureDecodingError`, also for another
/// size.
void loadPng(int descriptor, const CanvasPixels& canvas);

}  // namespace quillmar
