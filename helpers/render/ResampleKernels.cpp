#include "render/ResampleKernels.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__) && defined(__linux__) && !defined(QUILLMAR_ONE_TARGET)
#define QUILLMAR_EVERY_TARGET __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QUILLMAR_EVERY_TARGET
#endif

namespace quillmar {
namespace {

typedef float Pixel __attribute__((vector_size(16)));
typedef float TwoPixels __attribute__((vector_size(32)));
typedef float FourPixels __attribute__((vector_size(64)));
typedef float TwoWeights __attribute__((vector_size(8)));

/// From any address. Wide vectors are no return values: without the processor's wide registers they would be
/// handed over in another way.
template <class Vector>
inline void load(Vector& vector, const float* values) {
    std::memcpy(&vector, values, sizeof vector);
}

}  // namespace

QUILLMAR_EVERY_TARGET
void filterColumns(const float* source, float* target, const int* first, const float* weights, int taps,
                   int count) {
    for (int i = 0; i < count; ++i, weights += taps, target += 4) {
        const float* pixels = source + static_cast<std::ptrdiff_t>(first[i]) * 4;
        FourPixels sums{};
        int tap = 0;
        for (; tap + 4 <= taps; tap += 4, pixels += 16) {
            Pixel w;
            FourPixels four;
            load(w, weights + tap);
            load(four, pixels);
            sums += __builtin_shufflevector(w, w, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3) * four;
        }
        TwoPixels sum = __builtin_shufflevector(sums, sums, 0, 1, 2, 3, 4, 5, 6, 7) +
                        __builtin_shufflevector(sums, sums, 8, 9, 10, 11, 12, 13, 14, 15);
        if (tap < taps) {
            TwoWeights w;
            TwoPixels two;
            load(w, weights + tap);
            load(two, pixels);
            sum += __builtin_shufflevector(w, w, 0, 0, 0, 0, 1, 1, 1, 1) * two;
        }
        const Pixel result =
            __builtin_shufflevector(sum, sum, 0, 1, 2, 3) + __builtin_shufflevector(sum, sum, 4, 5, 6, 7);
        std::memcpy(target, &result, sizeof result);
    }
}

QUILLMAR_EVERY_TARGET
void filterRows(const float* const* rows, const float* weights, int rowCount, std::uint8_t* target,
                std::size_t values) {
    constexpr std::size_t block = 64;
    for (std::size_t at = 0; at < values; at += block) {
        const std::size_t size = std::min(block, values - at);
        float sums[block];
        for (std::size_t i = 0; i < block; ++i) sums[i] = 0.5f;  // rounds when the fraction is cut off
        if (size == block) {
            for (int row = 0; row < rowCount; ++row) {
                const float* pixels = rows[row] + at;
                const float weight = weights[row];
                for (std::size_t i = 0; i < block; ++i) sums[i] += weight * pixels[i];
            }
        } else {
            for (int row = 0; row < rowCount; ++row)
                for (std::size_t i = 0; i < size; ++i) sums[i] += weights[row] * rows[row][at + i];
        }
        std::uint8_t bytes[block];
        for (std::size_t i = 0; i < block; ++i) {
            const float low = sums[i] < 0.0f ? 0.0f : sums[i];
            bytes[i] = static_cast<std::uint8_t>(static_cast<int>(low > 255.0f ? 255.0f : low));
        }
        std::copy_n(bytes, size, target + at);
    }
}

QUILLMAR_EVERY_TARGET
void accumulateRow(const float* row, float weight, float* sum, float keep, std::size_t values) {
    for (std::size_t i = 0; i < values; ++i) sum[i] = sum[i] * keep + row[i] * weight;
}

QUILLMAR_EVERY_TARGET
void bytesToFloats(const std::uint8_t* bytes, float* values, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<float>(bytes[i]);
}

}  // namespace quillmar
