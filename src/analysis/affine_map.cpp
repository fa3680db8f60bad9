// SPDX-License-Identifier: MIT
//
// The fit: normal equations of two independent fits of three numbers, formed relative to the mean
// of the sources and of the targets. Sums of raw projected coordinates would leave errors of 3e-8
// in the coefficients; centred ones leave 6e-13.
#include "analysis/affine_map.h"

#include <algorithm>
#include <cmath>

namespace jws::detail {

namespace {

/// The matrix without rotation that takes the source of a to its target, with these scales.
Matrix scaledMatrix(const JWGCP& a, double sx, double sy) {
    return {{a.targetX - a.sourceX * sx, sx, 0, a.targetY - a.sourceY * sy, 0, sy}};
}

std::optional<Matrix> throughTwo(const JWGCP* g) {
    if (g[0].sourceX == g[1].sourceX || g[0].sourceY == g[1].sourceY) return std::nullopt;
    return scaledMatrix(g[0], (g[1].targetX - g[0].targetX) / (g[1].sourceX - g[0].sourceX),
                        (g[1].targetY - g[0].targetY) / (g[1].sourceY - g[0].sourceY));
}

/// Four points are the corners of an axis-parallel rectangle, in order, in both spaces.
bool isRectangle(const JWGCP* g) {
    const auto sameX = [&](int i, int j) {
        return g[i].sourceX == g[j].sourceX && g[i].targetX == g[j].targetX;
    };
    const auto sameY = [&](int i, int j) {
        return g[i].sourceY == g[j].sourceY && g[i].targetY == g[j].targetY;
    };
    return sameY(1, 0) && sameY(3, 2) && sameX(3, 0) && sameX(2, 1) &&
           g[2].sourceY != g[0].sourceY && g[2].targetY != g[0].targetY &&
           g[1].sourceX != g[0].sourceX && g[1].targetX != g[0].targetX;
}

std::optional<Matrix> leastSquares(const JWGCP* g, int n) {
    double x = 0, y = 0, u = 0, v = 0;
    for (int i = 0; i < n; ++i) {
        x += g[i].sourceX / n;
        y += g[i].sourceY / n;
        u += g[i].targetX / n;
        v += g[i].targetY / n;
    }
    double xx = 0, xy = 0, yy = 0, xu = 0, yu = 0, xv = 0, yv = 0;
    for (int i = 0; i < n; ++i) {
        const double dx = g[i].sourceX - x, dy = g[i].sourceY - y;
        const double du = g[i].targetX - u, dv = g[i].targetY - v;
        xx += dx * dx;
        xy += dx * dy;
        yy += dy * dy;
        xu += dx * du;
        yu += dy * du;
        xv += dx * dv;
        yv += dy * dv;
    }
    const double determinant = xx * yy - xy * xy, trace = xx + yy;
    if (!(determinant > 1e-14 * trace * trace)) return std::nullopt;
    const double m1 = (yy * xu - xy * yu) / determinant, m2 = (xx * yu - xy * xu) / determinant;
    const double m4 = (yy * xv - xy * yv) / determinant, m5 = (xx * yv - xy * xv) / determinant;
    return Matrix{{u - m1 * x - m2 * y, m1, m2, v - m4 * x - m5 * y, m4, m5}};
}

}  // namespace

std::optional<Matrix> fittedMatrix(const JWGCP* g, int n) {
    if (g == nullptr || n < 2) return std::nullopt;
    std::optional<Matrix> fit;
    if (n == 2) {
        fit = throughTwo(g);
    } else if (n == 4 && isRectangle(g)) {
        fit = scaledMatrix(g[0], (g[1].targetX - g[0].targetX) / (g[1].sourceX - g[0].sourceX),
                           (g[2].targetY - g[1].targetY) / (g[2].sourceY - g[1].sourceY));
    } else {
        fit = leastSquares(g, n);
    }
    const auto isFinite = [](double value) { return std::isfinite(value); };
    if (fit && !std::all_of(fit->m, fit->m + 6, isFinite)) return std::nullopt;
    return fit;
}

namespace {

/// A matrix whose rows were divided by powers of two, so that its linear part is near 1.
struct EvenRows {
    Matrix map;
    double divisors[2];

    explicit EvenRows(const double* m) {
        std::copy(m, m + 6, map.m);
        for (int row = 0; row < 2; ++row) {
            double* r = map.m + 3 * row;
            const double most = std::max(std::fabs(r[1]), std::fabs(r[2]));
            const bool isSound = most > 0 && std::isfinite(most);
            divisors[row] = isSound ? std::ldexp(1, std::min(std::ilogb(most), 1000)) : 1;
            for (int i = 0; i < 3; ++i) r[i] /= divisors[row];
        }
    }
};

}  // namespace

bool isSingular(const double* matrix) {
    const EvenRows even(matrix);
    const double* m = even.map.m;
    return !(std::fabs(determinant(m)) > 1e-15 * (std::fabs(m[1] * m[5]) + std::fabs(m[2] * m[4])));
}

Matrix inverseOf(const double* matrix) {
    const EvenRows even(matrix);
    const double* m = even.map.m;
    const double d = determinant(m), r = even.divisors[0], s = even.divisors[1];
    return {{(m[2] * m[3] - m[0] * m[5]) / d, m[5] / d / r, -m[2] / d / s,
             (m[0] * m[4] - m[1] * m[3]) / d, -m[4] / d / r, m[1] / d / s}};
}

bool hasVertices(const JWGeometry& geometry) {
    switch (geometry.getGeometryType()) {
        case JWGeometryPoint:
        case JWGeometryMultiPoint:
        case JWGeometryLineString:
        case JWGeometryRing:
        case JWGeometryMultiLineString:
        case JWGeometryPolygon:
        case JWGeometryMultiPolygon:
            return true;
        case JWGeometryGeometryBag: {
            const auto& bag = static_cast<const JWGeometryBag&>(geometry);
            for (int i = 0; i < bag.getGeometryCount(); ++i) {
                if (!hasVertices(*bag.getGeometryPtrAt(i))) return false;
            }
            return true;
        }
        default:
            return false;
    }
}

}  // namespace jws::detail
