#include <geometry/TmGeTol.h>

constinit TmGeTol TmGeContext::gTol{};
