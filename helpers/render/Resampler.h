#pragma once
#include <memory>
#include <vector>

#include "render/LanczosAxis.h"
#include "render/PictureDecoder.h"

namespace quillmar {

/// Makes rows of another size out of rows, while they come in: holds no more of them than one result needs.
class Resampler final : public RowSource {
public:
    /// `source` yields the window of both axes.
    Resampler(std::unique_ptr<RowSource> source, LanczosAxis columns, LanczosAxis rows);

    std::span<const std::uint8_t> nextRow() override;

private:
    void readSourceRow();
    float* keptRow(int row);
    void filterKeptRows(int result, int end);

    std::unique_ptr<RowSource> source_;
    LanczosAxis columns_;
    LanczosAxis rows_;
    std::size_t values_;            ///< floats in a row of the right width
    bool isAddedUp_;                ///< whether sums of results are kept instead of rows of the source
    std::vector<float> converted_;  ///< one row of the source
    std::vector<float> filtered_;   ///< the same in the right width
    std::vector<float> kept_;       ///< a ring of rows or of sums
    int ringSize_;
    int sourceRow_ = 0;
    int nextSum_ = 0;  ///< the first result that no row was added to yet
    int result_ = 0;
    Bytes target_;
};

}  // namespace quillmar
