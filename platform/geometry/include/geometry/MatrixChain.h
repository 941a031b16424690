#pragma once
// A local-to-world chain of transforms held as one matrix: it maps the coordinates of a part
// (the leaf, local end) to those of the assembly (the root, world end). Going down an assembly
// adds transforms at the leaf end, going up removes them again.
//
// The leaf end is the side that acts first on local coordinates: push_back(chain, leaf) makes
// chain * leaf; the root end acts last: push_front(chain, root) makes root * chain. The pops undo
// the push of the same end: pop_back(push_back(c, m), m) == c, within rounding.
#include <geometry/TmGeMatrix3d.h>

namespace Kx::Utility {

void push_back(TmGeMatrix3d& chain, const TmGeMatrix3d& leaf) noexcept;
void push_front(TmGeMatrix3d& chain, const TmGeMatrix3d& root) noexcept;
// False, with the chain unchanged, when the transform is singular: it cannot have been pushed
// by a transform that can be undone.
[[nodiscard]] bool pop_back(TmGeMatrix3d& chain, const TmGeMatrix3d& leaf) noexcept;
[[nodiscard]] bool pop_front(TmGeMatrix3d& chain, const TmGeMatrix3d& root) noexcept;

} // namespace Kx::Utility
