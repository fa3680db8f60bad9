// SPDX-License-Identifier: MIT
//
// The forms of transformation. A map is made of the arguments once, or refused; a form applies it
// to a point or to every vertex of a geometry.
#include "jw_geometrytransform.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "analysis/affine_map.h"
#include "analysis/unpack.h"
#include "foundation/plane_map.h"
#include "foundation/vertex_lists.h"
#include "layers/layer_map.h"

namespace jws {

using namespace detail;

namespace {

template <class... Numbers>
bool allFinite(Numbers... numbers) {
    return (std::isfinite(numbers) && ...);
}

bool isPlace(const JWRawPoint* center) {
    return center != nullptr && allFinite(center->x, center->y);
}

// Each map keeps its own copy of the centre, which may be a vertex that is about to move.

auto moveMap(double dx, double dy) {
    const auto map = [=](const JWRawPoint& p) { return JWRawPoint(p.x + dx, p.y + dy); };
    return allFinite(dx, dy) ? std::optional(map) : std::nullopt;
}

std::optional<Rotation> rotateMap(const JWRawPoint* center, double angle) {
    if (!isPlace(center) || !allFinite(angle)) return std::nullopt;
    return Rotation(*center, angle * 0.0174532925199433);
}

std::optional<Scaling> scaleMap(const JWRawPoint* center, double sx, double sy) {
    if (!isPlace(center) || !allFinite(sx, sy)) return std::nullopt;
    return Scaling(*center, sx, sy);
}

std::optional<Scaling> reflectMap(const JWRawPoint* center) { return scaleMap(center, -1, -1); }

auto shearMap(double k, bool alongX) {
    const auto map = [=](const JWRawPoint& p) {
        return alongX ? JWRawPoint(p.x + k * p.y, p.y) : JWRawPoint(p.x, p.y + k * p.x);
    };
    return allFinite(k) ? std::optional(map) : std::nullopt;
}

std::optional<Matrix> matrixMap(const double* m) {
    if (m == nullptr || !allFinite(m[0], m[1], m[2], m[3], m[4], m[5])) return std::nullopt;
    return Matrix{{m[0], m[1], m[2], m[3], m[4], m[5]}};
}

template <class Map>
bool applyMap(JWRawPoint* point, const std::optional<Map>& map) {
    if (point == nullptr || !map) return false;
    *point = (*map)(*point);
    return true;
}

template <class Map>
bool applyMap(JWGeometry* geometry, const std::optional<Map>& map) {
    if (geometry == nullptr || !map || !hasVertices(*geometry)) return false;
    mapVertices(*geometry, *map);
    geometry->updateEnvelop();
    return true;
}

}  // namespace

JWGeometryTransform::JWGeometryTransform() = default;
JWGeometryTransform::~JWGeometryTransform() = default;
JWGeometryTransform& JWGeometryTransform::operator=(const JWGeometryTransform&) = default;

// --- Matrices ------------------------------------------------------------------------------------

bool JWGeometryTransform::affineTransformFromGCP(const JWGCP* points, int n, double* matrix) {
    const std::optional<Matrix> fit = fittedMatrix(points, n);
    if (matrix == nullptr || !fit) return false;
    std::copy(fit->m, fit->m + 6, matrix);
    return true;
}

namespace {

bool writeInverse(const double* matrix, double* inverse) {
    const Matrix result = inverseOf(matrix);
    if (!matrixMap(result.m)) return false;
    std::copy(result.m, result.m + 6, inverse);
    return true;
}

}  // namespace

bool JWGeometryTransform::inverseTransformMatrix(const double* matrix, double* inverse) {
    if (matrix == nullptr || inverse == nullptr) return false;
    const double size = std::fabs(determinant(matrix));
    return size >= 1e-15 && std::isfinite(size) && writeInverse(matrix, inverse);
}

bool JWGeometryTransform::invertMatrix(const double* matrix, double* inverse) {
    return matrix != nullptr && inverse != nullptr && !isSingular(matrix) &&
           writeInverse(matrix, inverse);
}

// --- Forms ---------------------------------------------------------------------------------------

// One form: its arguments after the point or geometry are DECLARED, and PASSED to what makes the
// map.
#define JW_FORM(NAME, CLASS, MAP, DECLARED, PASSED)                     \
    bool JWGeometryTransform::NAME(CLASS* object, JW_UNPACK DECLARED) { \
        return applyMap(object, MAP(JW_UNPACK PASSED));                 \
    }
#define JW_SIX_FORMS(FAMILY, MAP, DECLARED, PASSED)                            \
    JW_FORM(multiPoint##FAMILY, JWMultiPoint, MAP, DECLARED, PASSED)           \
    JW_FORM(ring##FAMILY, JWRing, MAP, DECLARED, PASSED)                       \
    JW_FORM(lineString##FAMILY, JWLineString, MAP, DECLARED, PASSED)           \
    JW_FORM(multiLineString##FAMILY, JWMultiLineString, MAP, DECLARED, PASSED) \
    JW_FORM(polygon##FAMILY, JWPolygon, MAP, DECLARED, PASSED)                 \
    JW_FORM(multiPolygon##FAMILY, JWMultiPolygon, MAP, DECLARED, PASSED)
#define JW_SEVEN_FORMS(FAMILY, MAP, DECLARED, PASSED) \
    JW_SIX_FORMS(FAMILY, MAP, DECLARED, PASSED)       \
    JW_FORM(geometry##FAMILY, JWGeometry, MAP, DECLARED, PASSED)

JW_FORM(pointMove, JWRawPoint, moveMap, (double dx, double dy), (dx, dy))
JW_FORM(pointRotate, JWRawPoint, rotateMap, (const JWRawPoint* center, double angle),
        (center, angle))
JW_FORM(pointRotate1, JWRawPoint, rotateMap, (const JWRawPoint* center, double angle),
        (center, angle))
JW_FORM(pointScale1, JWRawPoint, scaleMap, (const JWRawPoint* center, double sx, double sy),
        (center, sx, sy))
JW_FORM(pointReflect, JWRawPoint, reflectMap, (const JWRawPoint* center), (center))
JW_FORM(pointShear, JWRawPoint, shearMap, (double k, bool alongX), (k, alongX))
JW_FORM(pointAffineTransfromByMatrix, JWRawPoint, matrixMap, (const double* matrix), (matrix))
JW_FORM(pointAffineTransform, JWRawPoint, fittedMatrix, (const JWGCP* points, int n), (points, n))

JW_SEVEN_FORMS(Move, moveMap, (double dx, double dy), (dx, dy))
JW_SEVEN_FORMS(Rotate, rotateMap, (const JWRawPoint* center, double angle), (center, angle))
JW_SEVEN_FORMS(Scale, scaleMap, (const JWRawPoint* center, double sx, double sy), (center, sx, sy))
JW_SIX_FORMS(Reflect, reflectMap, (const JWRawPoint* center), (center))
JW_SIX_FORMS(Shear, shearMap, (double k, bool alongX), (k, alongX))
JW_SEVEN_FORMS(AffineTransform, fittedMatrix, (const JWGCP* points, int n), (points, n))
JW_SEVEN_FORMS(AffineTransformByMatrix, matrixMap, (const double* matrix), (matrix))

int JWGeometryTransform::transformLayer(JWFeatureLayer* input, JWFeatureLayer* output,
                                        const double* matrix, int blockSize, int threads,
                                        JWLayerReport* report) {
    const auto setUp = [&](LayerMapJob& job) {
        const std::optional<Matrix> map = matrixMap(matrix);
        if (!map) {
            JWReport::setError(JWErrorInvalidArgument,
                               "transformLayer: the matrix is missing or not finite");
            throw LayerFailure();
        }
        job.outputType = input->getGeometryType();
        job.keepsEmpty = true;
        job.schema.addFieldsOf(job.input);
        job.map = [map = *map](const JWFeature& feature, MapResults& results) {
            std::unique_ptr<JWGeometry> geometry(feature.getGeometryPtr()->clone());
            mapVertices(*geometry, map);
            if (!isFinite(*geometry)) return results.reject(kBeyondNumbers);
            geometry->updateEnvelop();
            results.add(std::move(geometry));
        };
    };
    return mapLayer("transformLayer", input, output, {blockSize, threads}, report, setUp);
}

}  // namespace jws
