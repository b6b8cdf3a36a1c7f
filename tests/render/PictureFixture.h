#pragma once
#include <gmock/gmock.h>

#include <glib.h>

#include <cmath>
#include <fstream>

#include "PictureSamples.h"
#include "async/TaskScope.h"
#include "async/ThreadPool.h"
#include "fakes/TemporaryFolder.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/render/ProcessPictureRendering.h"
#include "platform/PictureRenderingError.h"

namespace quillmar {

inline void PrintTo(const RgbColor& color, std::ostream* out) {
    *out << int(color.red) << "," << int(color.green) << "," << int(color.blue);
}

/// A colour within so much of another in every channel.
MATCHER_P2(isAbout, expected, tolerance, "") {
    const auto isNear = [&](int a, int b) { return std::abs(a - b) <= tolerance; };
    return isNear(arg.red, expected.red) && isNear(arg.green, expected.green) &&
           isNear(arg.blue, expected.blue);
}

/// Reads sample files as the program does: in `quillmar-render`, locked in.
struct PictureFixture : testing::Test {
    static constexpr RgbColor background{200, 0, 200};
    TemporaryFolder folder;
    GlibMainLoop loop;
    ThreadPool pool{2};
    ProcessPictureRendering rendering{pool, ProcessPictureRendering::installedProgram()};
    PixelSize seenSize;  ///< of the last picture

    static void turnOnce() { g_main_context_iteration(nullptr, TRUE); }
    /// Runs the loop until the task has ended.
    template <class T>
    T awaited(Task<T> task) {
        TaskScope scope(loop);
        const TaskHandle<T> handle = scope.start(std::move(task));
        std::optional<T> value;
        std::exception_ptr error;
        scope.spawn(keep(handle, &value, &error));
        while (!value && !error) turnOnce();
        if (error) std::rethrow_exception(error);
        return *value;
    }
    /// For `awaited`: the end of a task, however it ends.
    template <class T>
    static Task<bool> ended(TaskHandle<T> handle) {
        co_await handle.ended();
        co_return true;
    }
    /// Why the task failed; nothing when it did not.
    template <class T>
    std::optional<PictureRenderingError::Case> failureOf(Task<T> task) {
        try {
            awaited(std::move(task));
        } catch (const PictureRenderingError& error) {
            return error.errorCase();
        }
        return std::nullopt;
    }

    std::filesystem::path save(const Bytes& bytes, const char* name = "picture") {
        const auto file = folder.path() / name;
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return file;
    }
    Task<SharedPixels> rendered(const std::filesystem::path& file, const PictureComposition& composition) {
        return rendering.render(file, [this, composition](PixelSize size) {
            seenSize = size;
            return composition;
        });
    }
    samples::Rgb render(const std::filesystem::path& file, const PictureComposition& composition) {
        return samples::rgbOf(*awaited(rendered(file, composition)));
    }
    samples::Rgb render(const Bytes& bytes, const PictureComposition& composition) {
        return render(save(bytes), composition);
    }
    /// The whole picture on a canvas of this size.
    samples::Rgb stretched(const Bytes& bytes, int width, int height) {
        return render(bytes, {{width, height}, background, {0, 0, width, height}, false, {}});
    }
    /// Where the quadrants' colours stand: their letters at the four corners.
    static std::string corners(const samples::Rgb& picture) {
        std::string letters;
        for (const auto& [x, y] : {std::pair{1, 1}, {3, 1}, {1, 3}, {3, 3}}) {
            const RgbColor color = picture.at(picture.width * x / 4, picture.height * y / 4);
            for (const auto& [letter, where] :
                 {std::pair{'R', std::pair{0, 0}}, {'G', {1, 0}}, {'B', {0, 1}}, {'Y', {1, 1}}}) {
                if (testing::Value(color, isAbout(samples::quadrant(where.first, where.second, 2, 2), 16)))
                    letters += letter;
            }
        }
        return letters;
    }
    static double psnr(const samples::Rgb& a, const samples::Rgb& b) {
        double squares = 0;
        for (std::size_t i = 0; i < a.bytes.size(); ++i) squares += std::pow(a.bytes[i] - b.bytes.at(i), 2);
        return 10 * std::log10(255 * 255 * static_cast<double>(a.bytes.size()) / squares);
    }

private:
    template <class T>
    static Task<void> keep(TaskHandle<T> handle, std::optional<T>* value, std::exception_ptr* error) {
        try {
            value->emplace(co_await handle.value());
        } catch (...) {
            *error = std::current_exception();
        }
    }
};

}  // namespace quillmar
