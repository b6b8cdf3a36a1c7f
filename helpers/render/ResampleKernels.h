#pragma once
#include <cstddef>
#include <cstdint>

namespace quillmar {

// The inner loops of resampling, compiled for the processor's widest vectors too. Rows of floats have four a
// pixel. Nothing here checks anything.

/// Each of the `count` pixels of `target` out of `taps` (even) pixels of `source` from `first[i]` on, with
/// weights that are `taps` apart. Up to `taps` pixels beyond the last are read and must be numbers.
void filterColumns(const float* source, float* target, const int* first, const float* weights, int taps,
                   int count);
/// Adds up `rowCount` rows of `values` floats, each with its weight, into bytes that are rounded and clamped.
void filterRows(const float* const* rows, const float* weights, int rowCount, std::uint8_t* target,
                std::size_t values);
/// sum = sum * keep + row * weight
void accumulateRow(const float* row, float weight, float* sum, float keep, std::size_t values);
void bytesToFloats(const std::uint8_t* bytes, float* values, std::size_t count);

}  // namespace quillmar
