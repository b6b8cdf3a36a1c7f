#include "render/LanczosAxis.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillmar {
namespace {

constexpr double lobes = 3;
/// Weights below this move no 8-bit sample.
constexpr double negligible = 1e-6;

double lanczos(double x) {
    if (x == 0) return 1;
    if (std::abs(x) >= lobes) return 0;
    const double angle = std::numbers::pi * x;
    return lobes * std::sin(angle) * std::sin(angle / lobes) / (angle * angle);
}

struct Window {
    int first = 0;
    std::vector<double> weights;
};

Window windowAround(double center, double stretch, int sourceCount) {
    const double reach = lobes * stretch;
    int first = std::clamp(static_cast<int>(std::ceil(center - reach)), 0, sourceCount - 1);
    const int last = std::clamp(static_cast<int>(std::floor(center + reach)), first, sourceCount - 1);
    Window window;
    double sum = 0;
    for (int i = first; i <= last; ++i) sum += window.weights.emplace_back(lanczos((i - center) / stretch));
    while (window.weights.size() > 1 && std::abs(window.weights.back()) < negligible)
        window.weights.pop_back();
    const auto isNeeded = [](double weight) { return std::abs(weight) >= negligible; };
    const auto begin = std::find_if(window.weights.begin(), window.weights.end() - 1, isNeeded);
    window.first = first + static_cast<int>(begin - window.weights.begin());
    window.weights.erase(window.weights.begin(), begin);
    for (double& weight : window.weights) weight = sum != 0 ? weight / sum : 1;
    return window;
}

}  // namespace

LanczosAxis::LanczosAxis(double sourceLength, int sourceCount, std::int64_t length, std::int64_t begin,
                         int count) {
    const double step = sourceLength / static_cast<double>(length);
    std::vector<Window> windows;
    windows.reserve(static_cast<std::size_t>(count));
    windowBegin = sourceCount;
    for (int i = 0; i < count; ++i) {
        const double center = (static_cast<double>(begin + i) + 0.5) * step - 0.5;
        const Window& window = windows.emplace_back(windowAround(center, std::max(step, 1.0), sourceCount));
        const int size = static_cast<int>(window.weights.size());
        windowBegin = std::min(windowBegin, window.first);
        windowEnd = std::max(windowEnd, window.first + size);
        taps = std::max(taps, size);
    }
    taps += taps % 2;
    weights.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(taps));
    for (std::size_t i = 0; i < windows.size(); ++i) {
        first.push_back(windows[i].first - windowBegin);
        std::ranges::transform(windows[i].weights, &weights[i * static_cast<std::size_t>(taps)],
                               [](double weight) { return static_cast<float>(weight); });
    }
}

int LanczosAxis::end(int i) const {
    const auto index = static_cast<std::size_t>(i);
    const float* own = &weights[index * static_cast<std::size_t>(taps)];
    int used = taps;
    while (used > 1 && own[used - 1] == 0) --used;
    return first[index] + used;
}

}  // namespace quillmar
