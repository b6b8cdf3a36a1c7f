#pragma once
#include <optional>
#include <string>
#include <vector>

#include "base/Url.h"
#include "modes/ColorFaderPresentationSettings.h"
#include "modes/MatrixEnums.h"

namespace quillmar {

/// An animation of falling glyphs. Without `usesCustomConfiguration` only the preset counts.
struct MatrixPresentationSettings {
    bool usesCustomConfiguration = false;
    MatrixVersion presetVersion = MatrixVersion::classic;
    bool skipIntro = true;
    bool allowsInteraction = false;
    MatrixFont font = MatrixFont::matrixcode;
    MatrixEffect effect = MatrixEffect::plain;
    MatrixRenderer renderer = MatrixRenderer::regl;
    int numberOfColumns = 140;
    double resolution = 1;
    int framesPerSecond = 60;
    double animationSpeed = 1;
    double fallSpeed = 0.3;
    double rainLength = 0.75;
    double cycleSpeed = 0.03;
    int cycleFrameSkip = 1;
    double slant = 0;
    double glyphHeightToWidth = 1;
    double glyphVerticalSpacing = 1;
    double glyphEdgeCrop = 0;
    bool flipHorizontally = false;
    int glyphRotation = 0;
    double bloomStrength = 0.7;
    double bloomSize = 0.4;
    double highPassThreshold = 0.1;
    double baseBrightness = -0.5;
    double baseContrast = 1.1;
    double glintBrightness = -1.5;
    double glintContrast = 2.5;
    double brightnessOverride = 0;
    double brightnessThreshold = 0;
    double brightnessDecay = 1;
    double dither = 0.05;
    std::string backgroundHexColor = "#000000";
    std::string cursorHexColor = "#75FF60";
    double cursorIntensity = 2;
    std::string glintHexColor = "#FFFFFF";
    double glintIntensity = 1;
    std::vector<ColorFaderStop> paletteColors;
    std::vector<ColorFaderStop> stripeColors;
    bool volumetric = false;
    double forwardSpeed = 0.25;
    double density = 1;
    bool thunder = false;
    bool polar = false;
    MatrixRippleType rippleType = MatrixRippleType::none;
    double rippleThickness = 0.2;
    double rippleScale = 30;
    double rippleSpeed = 0.2;
    bool useMirrorScene = false;
    bool useCamera = false;
    std::optional<std::string> cameraDeviceID;
    std::optional<std::string> cameraDeviceName;
    std::optional<Url> imageURL;
    std::optional<Url> cachedImageURL;
    std::optional<Url> videoURL;
    std::optional<Url> cachedVideoURL;
    bool isVideoMuted = true;

    /// What a new mode starts with: the glyphs' own colours. A plain `{}` has empty colour lists.
    static MatrixPresentationSettings standard();

    bool operator==(const MatrixPresentationSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("usesCustomConfiguration", self.usesCustomConfiguration)
            .required("presetVersion", self.presetVersion)
            .required("skipIntro", self.skipIntro)
            .required("allowsInteraction", self.allowsInteraction)
            .required("font", self.font)
            .required("effect", self.effect)
            .required("renderer", self.renderer)
            .required("numberOfColumns", self.numberOfColumns)
            .required("resolution", self.resolution)
            .required("framesPerSecond", self.framesPerSecond)
            .required("animationSpeed", self.animationSpeed)
            .required("fallSpeed", self.fallSpeed)
            .required("rainLength", self.rainLength)
            .required("cycleSpeed", self.cycleSpeed)
            .required("cycleFrameSkip", self.cycleFrameSkip);
        io.required("slant", self.slant)
            .required("glyphHeightToWidth", self.glyphHeightToWidth)
            .required("glyphVerticalSpacing", self.glyphVerticalSpacing)
            .required("glyphEdgeCrop", self.glyphEdgeCrop)
            .required("flipHorizontally", self.flipHorizontally)
            .required("glyphRotation", self.glyphRotation)
            .required("bloomStrength", self.bloomStrength)
            .required("bloomSize", self.bloomSize)
            .required("highPassThreshold", self.highPassThreshold)
            .required("baseBrightness", self.baseBrightness)
            .required("baseContrast", self.baseContrast)
            .required("glintBrightness", self.glintBrightness)
            .required("glintContrast", self.glintContrast)
            .required("brightnessOverride", self.brightnessOverride)
            .required("brightnessThreshold", self.brightnessThreshold);
        describeColorsAndSources(self, io);
    }

private:
    static void describeColorsAndSources(auto& self, auto& io) {
        io.required("brightnessDecay", self.brightnessDecay)
            .required("dither", self.dither)
            .required("backgroundHexColor", self.backgroundHexColor)
            .required("cursorHexColor", self.cursorHexColor)
            .required("cursorIntensity", self.cursorIntensity)
            .required("glintHexColor", self.glintHexColor)
            .required("glintIntensity", self.glintIntensity)
            .required("paletteColors", self.paletteColors)
            .required("stripeColors", self.stripeColors)
            .required("volumetric", self.volumetric)
            .required("forwardSpeed", self.forwardSpeed)
            .required("density", self.density)
            .required("thunder", self.thunder)
            .required("polar", self.polar)
            .required("rippleType", self.rippleType);
        io.required("rippleThickness", self.rippleThickness)
            .required("rippleScale", self.rippleScale)
            .required("rippleSpeed", self.rippleSpeed)
            .required("useMirrorScene", self.useMirrorScene)
            .required("useCamera", self.useCamera)
            .optional("cameraDeviceID", self.cameraDeviceID)
            .optional("cameraDeviceName", self.cameraDeviceName)
            .optional("imageURL", self.imageURL)
            .optional("cachedImageURL", self.cachedImageURL)
            .optional("videoURL", self.videoURL)
            .optional("cachedVideoURL", self.cachedVideoURL)
            .required("isVideoMuted", self.isVideoMuted);
    }
};

}  // namespace quillmar
