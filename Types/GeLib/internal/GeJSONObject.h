#pragma once

#include <base/JSONNode.h>

#include <boost/json/object.hpp>

#include <optional>

namespace Kx::Types::GeJSON {

// Without a key the members go straight into `node`, which keeps whatever else it holds; with a
// key they are gathered in a fresh object that then becomes node[key] as a whole.
template <class Fill>
void writeObject(JSONNode& node, const char* key, Fill&& fill)
{
    if (key == nullptr) {
        fill(node);
        return;
    }
    JSONNode object = JSONNode::fromValue(boost::json::object());
    fill(object);
    node[key] = object;
}

// What a reader reads: the node itself without a key, its member `key` otherwise, and nothing at
// all when that member is absent (every reader then answers false at once).
[[nodiscard]] inline std::optional<JSONRef> subjectOf(const JSONNode& node, const char* key)
{
    if (key == nullptr) {
        return node.ref();
    }
    const JSONRef member = node[key];
    if (!member.exists()) {
        return std::nullopt;
    }
    return member;
}

} // namespace Kx::Types::GeJSON
