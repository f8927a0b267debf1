#pragma once
// A two-dimensional view of bytes laid over memory that someone else owns: rows of a fixed
// number of bytes, one after the other. It copies and allocates nothing. Every access is checked
// against the rows and bytes it was laid over, and one outside them is a "Subscript out of
// range" failure, never a read or write of memory beyond the view.
#include <cstddef>
#include <cstdint>

#include "base/Failure.h"

namespace quorvane {

class ByteView {
 public:
  // Lays the view over `rows` rows of `bytesPerRow` bytes from `first`. A view over nothing
  // (a null `first`) cannot be laid: that fails at once.
  ByteView(std::uint8_t* first, std::int64_t bytesPerRow, std::int64_t rows)
      : first_(first),
        bytesPerRow_(bytesPerRow < 0 ? 0 : bytesPerRow),
        rows_(rows < 0 ? 0 : rows) {
    if (first_ == nullptr) RaiseOutOfRange();
  }

  std::int64_t Rows() const { return rows_; }
  std::int64_t BytesPerRow() const { return bytesPerRow_; }

  // The `count` bytes of `row` from `column` on, all checked at once.
  std::uint8_t* Span(std::int64_t row, std::int64_t column, std::int64_t count) const {
    if (row < 0 || row >= rows_ || column < 0 || count < 0 || column > bytesPerRow_ - count) {
      RaiseOutOfRange();
    }
    return first_ + static_cast<std::size_t>(row * bytesPerRow_ + column);
  }

  std::uint8_t& operator()(std::int64_t row, std::int64_t column) const {
    if (row < 0 || row >= rows_ || column < 0 || column >= bytesPerRow_) RaiseOutOfRange();
    return first_[static_cast<std::size_t>(row * bytesPerRow_ + column)];
  }

 private:
  [[noreturn]] static void RaiseOutOfRange() {
    Raise(FailureNumber::SubscriptOutOfRange, "Subscript out of range");
  }

  std::uint8_t* first_;
  std::int64_t bytesPerRow_;
  std::int64_t rows_;
};

}  // namespace quorvane
