/* SPDX-License-Identifier: MIT
 *
 * The clipping engine's interface: the names, types and calls that the General Polygon Clipper
 * publishes, so that either our engine or a licensed copy of that library can stand behind it.
 * Declarations only, written for this project; C and C++ may include it.
 */
#ifndef GPC_H
#define GPC_H

#ifdef __cplusplus
extern "C" {
#endif

/** The set operation. */
typedef enum {
    GPC_DIFF,  /**< subject minus clip */
    GPC_INT,   /**< intersection */
    GPC_XOR,   /**< exclusive or */
    GPC_UNION  /**< union */
} gpc_op;

typedef struct {
    double x;
    double y;
} gpc_vertex;

/** A contour, without a repeated closing vertex. */
typedef struct {
    int num_vertices;
    gpc_vertex* vertex;
} gpc_vertex_list;

/** A polygon: contours, each with a flag (0 outer contour, 1 hole). */
typedef struct {
    int num_contours;
    int* hole;
    gpc_vertex_list* contour;
} gpc_polygon;

/**
 * Clips two polygons and fills every field of `result_polygon`, whose former values are ignored.
 *
 * Each operand is read by the even-odd rule, whatever the order, nesting, orientation or
 * self-crossing of its contours; its hole flags are ignored and its memory is never written.
 * Contours with fewer than three vertices count as empty.
 *
 * Result contours do not cross one another and touch at points only; outer contours run
 * counter-clockwise and holes clockwise; a contour comes before every contour around it; it starts
 * at a vertex that no other contour has, where there is one, so that vertex (v + 2) / 2 of its v
 * is unshared too if possible. A vertex that was an operand's vertex keeps its bits. Equal input
 * gives equal output.
 *
 * An operand with a non-finite coordinate gives an empty result and errno EDOM; exhausted memory
 * an empty result and errno ENOMEM; input that the engine cannot resolve an empty result and errno
 * ERANGE. Otherwise errno is left as it was. Safe to call from several threads at once.
 *
 * The result's arrays come from malloc; release them with `gpc_free_polygon`.
 */
void gpc_polygon_clip(gpc_op set_operation, gpc_polygon* subject_polygon,
                      gpc_polygon* clip_polygon, gpc_polygon* result_polygon);

/** Frees the arrays of a result and sets it empty; the record itself stays the caller's. */
void gpc_free_polygon(gpc_polygon* polygon);

#ifdef __cplusplus
}
#endif

#endif /* GPC_H */
