// SPDX-License-Identifier: MIT
//
// The whole geometry model: raw points and rectangles, the tree of geometry classes, and the
// factory that builds geometries from well-known binary and text.
//
// Coordinates are planar 64-bit floats. No class keeps state outside its objects: distinct objects
// may be used from distinct threads, one object may be read by many threads at once.
//
// The virtual operations of a class stand in slot order; the order is part of the interface.
#ifndef JW_GEOMETRY_H
#define JW_GEOMETRY_H

#include "jw_geometry_arc.h"
#include "jw_geometry_base.h"
#include "jw_geometry_collection.h"
#include "jw_geometry_curve.h"
#include "jw_geometry_factory.h"
#include "jw_geometry_polygon.h"

#endif  // JW_GEOMETRY_H
