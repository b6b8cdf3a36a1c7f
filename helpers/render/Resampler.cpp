#include "render/Resampler.h"

#include <algorithm>
#include <utility>

#include "render/ResampleKernels.h"

namespace quillmar {
namespace {

/// Up to here the rows of the source are kept, which is quicker. A picture that shrinks more would need ever
/// more of them, but never more than a few sums.
constexpr int maximumKeptRows = 32;

/// Rows whose distance is a power of two would push each other out of the processor's cache.
constexpr std::size_t rowPadding = 80;

int mostOverlapping(const LanczosAxis& axis) {
    int most = 1;
    for (int oldest = 0, newest = 0; newest < axis.count(); ++newest) {
        while (axis.end(oldest) <= axis.first[static_cast<std::size_t>(newest)]) ++oldest;
        most = std::max(most, newest - oldest + 1);
    }
    return most;
}

}  // namespace

Resampler::Resampler(std::unique_ptr<RowSource> source, LanczosAxis columns, LanczosAxis rows)
    : source_(std::move(source)),
      columns_(std::move(columns)),
      rows_(std::move(rows)),
      values_(static_cast<std::size_t>(columns_.count()) * pixelBytes),
      isAddedUp_(rows_.taps > maximumKeptRows),
      converted_(static_cast<std::size_t>(columns_.windowEnd - columns_.windowBegin + columns_.taps) *
                 pixelBytes),
      filtered_(isAddedUp_ ? values_ : 0),
      ringSize_(isAddedUp_ ? mostOverlapping(rows_) : rows_.taps),
      target_(values_) {
    kept_.resize((values_ + rowPadding) * static_cast<std::size_t>(ringSize_));
}

std::span<const std::uint8_t> Resampler::nextRow() {
    const int end = rows_.end(result_);
    while (sourceRow_ < end) readSourceRow();
    if (isAddedUp_) {
        const float* sum = keptRow(result_);
        const float whole = 1;
        filterRows(&sum, &whole, 1, target_.data(), values_);
    } else {
        filterKeptRows(result_, end);
    }
    ++result_;
    return target_;
}

void Resampler::readSourceRow() {
    const std::span<const std::uint8_t> row = source_->nextRow();
    bytesToFloats(row.data(), converted_.data(), row.size());
    float* filtered = isAddedUp_ ? filtered_.data() : keptRow(sourceRow_);
    filterColumns(converted_.data(), filtered, columns_.first.data(), columns_.weights.data(), columns_.taps,
                  columns_.count());
    for (int i = result_; isAddedUp_ && i < rows_.count(); ++i) {
        const int tap = sourceRow_ - rows_.first[static_cast<std::size_t>(i)];
        if (tap < 0) break;
        if (tap >= rows_.taps) continue;
        const auto at = static_cast<std::size_t>(i) * static_cast<std::size_t>(rows_.taps);
        const float keep = i < nextSum_ ? 1.0f : 0.0f;
        nextSum_ = std::max(nextSum_, i + 1);
        accumulateRow(filtered, rows_.weights[at + static_cast<std::size_t>(tap)], keptRow(i), keep, values_);
    }
    ++sourceRow_;
}

float* Resampler::keptRow(int row) {
    return &kept_[(values_ + rowPadding) * static_cast<std::size_t>(row % ringSize_)];
}

void Resampler::filterKeptRows(int result, int end) {
    const float* rows[maximumKeptRows];
    const int first = rows_.first[static_cast<std::size_t>(result)];
    for (int row = first; row < end; ++row) rows[row - first] = keptRow(row);
    const auto at = static_cast<std::size_t>(result) * static_cast<std::size_t>(rows_.taps);
    filterRows(rows, &rows_.weights[at], end - first, target_.data(), values_);
}

}  // namespace quillmar
