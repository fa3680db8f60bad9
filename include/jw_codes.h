// SPDX-License-Identifier: MIT
//
// The codes that geometries, features and layers share. Their numeric values are part of the
// interface: programs store and switch on them.
#ifndef JW_CODES_H
#define JW_CODES_H

namespace jws {

/// What a geometry is, as `JWGeometry::getGeometryType` answers. Codes 1 to 7 equal the well-known
/// binary codes. A ring is 14, not 3: code that needs an area must say whether it accepts rings.
enum enumJWGeometryType {
    JWGeometryNone = 0,  ///< no geometry; also a bare `JWRawPoint`
    JWGeometryPoint = 1,
    JWGeometryLineString = 2,
    JWGeometryPolygon = 3,
    JWGeometryMultiPoint = 4,
    JWGeometryMultiLineString = 5,
    JWGeometryMultiPolygon = 6,
    JWGeometryGeometryBag = 7,
    JWGeometryDynamicPoint = 8,
    JWGeometryLine = 11,   ///< a single straight segment
    JWGeometryCurve = 12,  ///< circular and elliptic arcs, Bézier curves
    JWGeometryRing = 14,
};

/// Well-known binary type codes, as `JWGeometry::getGeometryWKBType` answers and layers declare.
enum enumJWWKBGeometryType {
    JWWKBUnknown = 0,  ///< no well-known binary form of its own, or a layer of any type
    JWWKBPoint = 1,
    JWWKBLineString = 2,
    JWWKBPolygon = 3,
    JWWKBMultiPoint = 4,
    JWWKBMultiLineString = 5,
    JWWKBMultiPolygon = 6,
    JWWKBGeometryCollection = 7,
    JWWKBNone = 100,  ///< a layer without geometry
};

/// Byte order of well-known binary; the values are the first byte of the encoding.
enum enumJWWKBByteOrder {
    JWWKBBigEndian = 0,     ///< XDR
    JWWKBLittleEndian = 1,  ///< NDR
};

/// Outcome of encoding, decoding and data-source operations.
enum enumJWDataErr {
    JWDataErrNone = 0,           ///< success
    JWDataErrNotEnoughData = 1,  ///< the input ends too early
    JWDataErrNotEnoughMemory = 2,
    JWDataErrUnsupportedGeometryType = 3,  ///< well-formed, but of a type this object cannot hold
    JWDataErrUnsupportedOperation = 4,
    JWDataErrCorruptData = 5,  ///< not well-formed
    JWDataErrFailure = 6,      ///< any other failure; the last error text says which
    JWDataErrUnsupportedSRS = 7,
    JWDataErrInvalidHandle = 8,       ///< a null argument
    JWDataErrNonExistingFeature = 9,  ///< no feature, layer or file of that name or position
};

/// Direction of a ring, by the sign of its area.
enum enumJWRingOrientation {
    JWRingUndefined = 0,  ///< zero or undefined (NaN) area
    JWRingClockwise = 1,
    JWRingCounterClockwise = 2,
};

/// Type of an attribute field; the values are OGR's.
enum enumJWFieldType {
    JWFieldInteger = 0,
    JWFieldIntegerList = 1,
    JWFieldReal = 2,
    JWFieldRealList = 3,
    JWFieldString = 4,
    JWFieldStringList = 5,
    JWFieldBinary = 8,
    JWFieldDate = 9,
    JWFieldTime = 10,
    JWFieldDateTime = 11,
    JWFieldInteger64 = 12,
    JWFieldInteger64List = 13,
};

/// Relation of a first operand to a second.
enum enumJWSpatialRelation {
    JWRelationNone = 0,  ///< no answer: an operand is missing
    JWRelationEqual = 1,
    JWRelationDisjoint = 2,
    JWRelationTouch = 3,
    JWRelationCross = 4,
    JWRelationIntersect = 5,
    JWRelationContain = 6,  ///< the first contains the second
    JWRelationWithin = 7,   ///< the first lies within the second
    JWRelationOverlap = 8,  ///< any other: the two meet
};

/// Kind of a layer.
enum enumJWLayerType {
    JWLayerUnknown = 0,
    JWLayerFeature = 1,  ///< vector features (`JWFeatureLayer`)
};

/// Kind of the source behind a layer.
enum enumJWDataDriverType {
    JWDriverUnknown = 0,
    JWDriverFile = 1,    ///< files in any vector format that GDAL knows
    JWDriverMemory = 2,  ///< features held in memory
};

}  // namespace jws

#endif  // JW_CODES_H
