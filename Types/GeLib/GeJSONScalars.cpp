#include <Types/GeLib/GeJSONScalars.h>

namespace Kx::Types {

// The const operator[] only looks: it never inserts the member it is asked for.
bool JSONToDouble(const JSONNode& node, double& out, const std::string& key) { return node[key].get(out); }
bool JSONToBool(const JSONNode& node, bool& out, const std::string& key) { return node[key].get(out); }

} // namespace Kx::Types
