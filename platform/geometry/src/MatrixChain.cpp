#include <geometry/MatrixChain.h>

namespace Kx::Utility {

void push_back(TmGeMatrix3d& chain, const TmGeMatrix3d& leaf) noexcept
{
    chain.postMultBy(leaf);
}

void push_front(TmGeMatrix3d& chain, const TmGeMatrix3d& root) noexcept
{
    chain.preMultBy(root);
}

bool pop_back(TmGeMatrix3d& chain, const TmGeMatrix3d& leaf) noexcept
{
    TmGeMatrix3d inverse;
    if (!Tmk::isOk(leaf.inverse(inverse)))
        return false;
    chain.postMultBy(inverse);
    return true;
}

bool pop_front(TmGeMatrix3d& chain, const TmGeMatrix3d& root) noexcept
{
    TmGeMatrix3d inverse;
    if (!Tmk::isOk(root.inverse(inverse)))
        return false;
    chain.preMultBy(inverse);
    return true;
}

} // namespace Kx::Utility
