// SPDX-License-Identifier: MIT
//
// What two overlays must agree in before their times are compared. All results are measured by the
// same arithmetic, from well-known binary, whoever made them.
#ifndef JWCG_BENCH_SUMMARY_H
#define JWCG_BENCH_SUMMARY_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

/// Counts and area of a polygonal result.
class Summary {
  public:
    Summary() = default;
    /// `sliver`: pieces of at most this area, square layer units, are counted apart.
    explicit Summary(double sliver) : m_sliver(sliver) {}

    /// Adds the polygons of one result geometry, little-endian well-known binary without z and m.
    /// Points and lines in a collection are passed over; a geometry without any polygon does not
    /// count. Throws `std::runtime_error` on anything that is not well-formed.
    void add(const unsigned char* wkb, std::size_t size);

    std::int64_t features() const { return m_features; }
    std::int64_t slivers() const { return m_slivers; }
    std::int64_t polygons() const { return m_polygons; }
    double area() const { return m_area; }
    double meanArea() const { return m_features ? m_area / static_cast<double>(m_features) : 0.0; }
    /// Hash of all bytes added, in their order.
    std::uint64_t hash() const { return m_hash; }

    /// Empty when `other` has the same number of features above the sliver area and the same area
    /// up to `relative`; otherwise the difference in words.
    std::string difference(const Summary& other, double relative) const;

  private:
    double m_sliver = 0.0;
    std::int64_t m_features = 0;
    std::int64_t m_slivers = 0;
    std::int64_t m_polygons = 0;
    double m_area = 0.0;
    std::uint64_t m_hash = 0xcbf29ce484222325ULL;
};

}  // namespace bench

#endif  // JWCG_BENCH_SUMMARY_H
