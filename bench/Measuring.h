#pragma once
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "base/PixelRect.h"

namespace quillmar {

struct Child {
    double milliseconds;
    double megabytes;
};

inline double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The shortest of several goes, by the clock and by the processors' time, which a busy machine disturbs
/// less.
struct Best {
    double wall = 1e9;
    double processor = 1e9;

    void take(const std::function<void()>& work) {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t spent = std::clock();
        work();
        processor = std::min(processor, 1e3 * static_cast<double>(std::clock() - spent) / CLOCKS_PER_SEC);
        wall = std::min(wall, millisecondsSince(start));
    }
};

/// Runs work in a process of its own, for its time from the start on and its largest size.
inline Child inChild(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    if (status != 0) return {NAN, NAN};
    return {millisecondsSince(start), static_cast<double>(usage.ru_maxrss) / 1024};
}

inline Child command(std::vector<std::string> words) {
    return inChild([&] {
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    });
}

/// Where a picture goes that fills the canvas, centred.
inline PixelRect filling(PixelSize picture, PixelSize canvas) {
    const double scale = std::max(static_cast<double>(canvas.width) / picture.width,
                                  static_cast<double>(canvas.height) / picture.height);
    const std::int64_t width = std::lround(picture.width * scale);
    const std::int64_t height = std::lround(picture.height * scale);
    return {(canvas.width - width) / 2, (canvas.height - height) / 2, width, height};
}

}  // namespace quillmar
