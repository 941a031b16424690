#include <Types/GeLib/GeJSONMatrices.h>

#include <Types/GeLib/internal/GeJSONObject.h>

#include <geometry/TmGeMatrix2d.h>
#include <geometry/TmGeMatrix3d.h>

#include <boost/json/array.hpp>

#include <cstddef>
#include <type_traits>

namespace Kx::Types {

namespace {

template <class Matrix>
constexpr std::size_t s_order = std::extent_v<decltype(Matrix::entry)>;

template <class Matrix>
void writeMatrix(const Matrix& matrix, JSONNode& node, const char* key)
{
    JSONNode rows = JSONNode::fromValue(boost::json::array());
    for (std::size_t i = 0; i < s_order<Matrix>; ++i) {
        JSONNode row = JSONNode::fromValue(boost::json::array());
        for (std::size_t j = 0; j < s_order<Matrix>; ++j) {
            row.append(matrix.entry[i][j]);
        }
        rows.append(row);
    }
    if (key == nullptr) {
        node = std::move(rows);
    } else {
        node[key] = rows;
    }
}

template <class Matrix>
bool readMatrix(const JSONNode& node, Matrix& out, const char* key)
{
    const auto rows = GeJSON::subjectOf(node, key);
    constexpr std::size_t order = s_order<Matrix>;
    if (!rows || rows->size() != order) {
        return false;
    }
    for (std::size_t i = 0; i < order; ++i) {
        if ((*rows)[i].size() != order) {
            return false;
        }
    }
    // Each entry goes into `out` as soon as it is read: the partial result is part of the contract.
    for (std::size_t i = 0; i < order; ++i) {
        for (std::size_t j = 0; j < order; ++j) {
            if (!(*rows)[i][j].get(out.entry[i][j])) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

void Matrix2dToJSON(const TmGeMatrix2d& matrix, JSONNode& node, const char* key) { writeMatrix(matrix, node, key); }
void Matrix3dToJSON(const TmGeMatrix3d& matrix, JSONNode& node, const char* key) { writeMatrix(matrix, node, key); }

bool JSONToMatrix2d(const JSONNode& node, TmGeMatrix2d& out, const char* key) { return readMatrix(node, out, key); }
bool JSONToMatrix3d(const JSONNode& node, TmGeMatrix3d& out, const char* key) { return readMatrix(node, out, key); }

} // namespace Kx::Types
