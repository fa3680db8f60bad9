// SPDX-License-Identifier: MIT
#include "clip/line_clip_rival.h"
#include "jw_geometryclip.h"

namespace bench {
namespace {

using Clip = jws::JWGeometryClip;

class OursLineClip final : public LineClipRival {
  public:
    explicit OursLineClip(bool threads) : threads_(threads) {}
    ~OursLineClip() override { clear(); }

    void load(const jws::JWMultiLineString& lines, const jws::JWPolygon& area) override {
        lines_ = lines;
        area_ = area;
    }

    void clip() override {
        (threads_ ? Clip::multiLineStringClipByPolygon_mp : Clip::multiLineStringClipByPolygon)(
            &lines_, &area_, pieces_, inside_, false, true);
    }

    void cut() override {
        (threads_ ? Clip::polygonClipByMultiLineString_mp : Clip::polygonClipByMultiLineString)(
            &area_, &lines_, rings_, holes_, false);
    }

    double measure() const override {
        double sum = 0;
        for (std::size_t i = 0; i < pieces_.size(); ++i)
            if (inside_[i] == 1) sum += pieces_[i]->getLength();
        for (const int hole : holes_) sum += hole == 0;
        return sum;
    }

    void clear() override {
        for (jws::JWLineString* piece : pieces_) delete piece;
        for (jws::JWRing* ring : rings_) delete ring;
        pieces_.clear();
        inside_.clear();
        rings_.clear();
        holes_.clear();
    }

  private:
    bool threads_;
    jws::JWMultiLineString lines_;
    jws::JWPolygon area_;
    std::vector<jws::JWLineString*> pieces_;
    std::vector<unsigned int> inside_;
    std::vector<jws::JWRing*> rings_;
    std::vector<int> holes_;
};

}  // namespace

std::unique_ptr<LineClipRival> makeOursLineClip(bool threads) {
    return std::make_unique<OursLineClip>(threads);
}

}  // namespace bench
