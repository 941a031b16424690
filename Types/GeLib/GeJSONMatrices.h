#pragma once

// Matrices as JSON arrays of rows, row-major: element j of row i is the entry in row i, column j.
// TmGeMatrix2d is 3 rows of 3 numbers, TmGeMatrix3d 4 rows of 4.
//
// Writers: with a null key `node` itself becomes the array (whatever it held is replaced);
// otherwise node[key] does. Readers: with a null key `node` is read, otherwise its member `key`.
//
// Unlike every other reader here, a matrix reader that fails part-way keeps what it read: the
// shape is checked first (the array and each row must have exactly the matrix's order, else false
// with `out` untouched), then the entries are read row by row and each is stored in `out` at once,
// so an entry that is not a number answers false with the entries before it already written.

#include <base/JSONNode.h>

class TmGeMatrix2d;
class TmGeMatrix3d;

namespace Kx::Types {

void Matrix2dToJSON(const TmGeMatrix2d& matrix, JSONNode& node, const char* key);
void Matrix3dToJSON(const TmGeMatrix3d& matrix, JSONNode& node, const char* key);

[[nodiscard]] bool JSONToMatrix2d(const JSONNode& node, TmGeMatrix2d& out, const char* key);
[[nodiscard]] bool JSONToMatrix3d(const JSONNode& node, TmGeMatrix3d& out, const char* key);

} // namespace Kx::Types
