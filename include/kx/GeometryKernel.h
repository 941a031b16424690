#pragma once

// The TmGe geometry kernel on its own: points, vectors, matrices, lines, planes, arcs, NURBS
// curves, polylines, curve lists, tolerances and the versioned field I/O. It needs nothing else of
// the product (link KxTypes::geometry alone if that is all a program uses).
#include <geometry/TmGe.h>
