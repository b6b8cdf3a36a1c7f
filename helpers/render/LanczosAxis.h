#pragma once
#include <cstdint>
#include <vector>

namespace quillmar {

/// Which samples of a source make each sample of a result along one axis, and how much each of them counts:
/// Lanczos with three lobes, widened when the result is smaller.
struct LanczosAxis {
    /// The result of the whole source would have `length` samples; of these, `count` from `begin` on are
    /// wanted. The source has `sourceCount` samples, which stand for `sourceLength` (at most one less).
    LanczosAxis(double sourceLength, int sourceCount, std::int64_t length, std::int64_t begin, int count);

    int count() const { return static_cast<int>(first.size()); }
    /// The end of the samples that result `i` is made of, counted from `windowBegin`.
    int end(int i) const;

    int windowBegin = 0;  ///< of all samples of the source only these are needed
    int windowEnd = 0;
    int taps = 2;                ///< weights of each result, an even number
    std::vector<int> first;      ///< per result: its first sample, counted from `windowBegin`
    std::vector<float> weights;  ///< per result `taps` of them, zero where there is no sample
};

}  // namespace quillmar
