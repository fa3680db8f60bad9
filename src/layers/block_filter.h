// SPDX-License-Identifier: MIT
//
// Blocks of a layer. With block size s a layer of n features is read in n / s + 1 blocks; block i
// covers positions i·s + 1 to i·s + s, counted from 1, and is described by the filter text
// "fid >= %d and fid <= %d\n". Where a source numbers its features 1, 2, 3, … the text selects
// exactly these features; any other numbering (from 0, with gaps) is read by position, so that
// every feature is read once. Reading a block continues the layer's cursor either way.
#ifndef JW_LAYERS_BLOCK_FILTER_H
#define JW_LAYERS_BLOCK_FILTER_H

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>

#include "jw_feature.h"

namespace jws::detail {

/// The blocks of a list of `count` features; a size of 0 or less makes one block of all, as far as
/// an `int` counts them.
class Blocks {
  public:
    Blocks(std::int64_t count, int blockSize)
        : m_size(blockSize > 0 ? blockSize : std::min<std::int64_t>(count + 1, INT_MAX)),
          m_number(count / m_size + 1) {}

    std::int64_t number() const { return m_number; }
    std::int64_t size() const { return m_size; }
    /// Positions of block i, counted from 1, both included.
    std::int64_t first(std::int64_t i) const { return i * m_size + 1; }
    std::int64_t last(std::int64_t i) const { return i * m_size + m_size; }
    /// The filter text of block i, line break included.
    std::string filter(std::int64_t i) const;

  private:
    std::int64_t m_size;
    std::int64_t m_number;
};

/// Reads the features at positions `first` to `last` (from 1, both included) of a layer into `out`;
/// with an empty range (`first` below 1 or above `last`) those that satisfy `where` instead.
/// Returns their count, −1 with the last error set when reading failed.
int readFeatures(JWFeatureLayer& layer, const char* where, std::int64_t first, std::int64_t last,
                 JWFeatureClass& out);

}  // namespace jws::detail

#endif  // JW_LAYERS_BLOCK_FILTER_H
