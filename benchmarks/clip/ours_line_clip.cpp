// SPDX-License-Identifier: MIT
#include "clip/line_clip_rival.h"
#include "jw_geometryclip.h"

namespace bench {
namespace {

using Clip = jws::JWGeometryClip;

class OursLineClip final : public LineClipRival {
  public:
    explicit OursLineClip(bool threads) : m_threads(threads) {}
    ~OursLineClip() override { clear(); }

    void load(const jws::JWMultiLineString& lines, const jws::JWPolygon& area) override {
        m_lines = lines;
        m_area = area;
    }

    void clip() override {
        (m_threads ? Clip::multiLineStringClipByPolygon_mp : Clip::multiLineStringClipByPolygon)(
            &m_lines, &m_area, m_pieces, m_inside, false, true);
    }

    void cut() override {
        (m_threads ? Clip::polygonClipByMultiLineString_mp : Clip::polygonClipByMultiLineString)(
            &m_area, &m_lines, m_rings, m_holes, false);
    }

    double measure() const override {
        double sum = 0;
        for (std::size_t i = 0; i < m_pieces.size(); ++i)
            if (m_inside[i] == 1) sum += m_pieces[i]->getLength();
        for (const int hole : m_holes) sum += hole == 0;
        return sum;
    }

    void clear() override {
        for (jws::JWLineString* piece : m_pieces) delete piece;
        for (jws::JWRing* ring : m_rings) delete ring;
        m_pieces.clear();
        m_inside.clear();
        m_rings.clear();
        m_holes.clear();
    }

  private:
    bool m_threads;
    jws::JWMultiLineString m_lines;
    jws::JWPolygon m_area;
    std::vector<jws::JWLineString*> m_pieces;
    std::vector<unsigned int> m_inside;
    std::vector<jws::JWRing*> m_rings;
    std::vector<int> m_holes;
};

}  // namespace

std::unique_ptr<LineClipRival> makeOursLineClip(bool threads) {
    return std::make_unique<OursLineClip>(threads);
}

}  // namespace bench
