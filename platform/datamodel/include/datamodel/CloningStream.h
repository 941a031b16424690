#pragma once

#include <datamodel/BinaryStreams.h>
#include <datamodel/StrongRef.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace Kx {

class CloningContext;
class EntityMetaType;
class Segment;

// Copies entities into other segments, of the same document or of another one. The copy phase
// runs each source's onPreCloneCopy hooks and writes it to a binary stream in clone mode; the
// paste phase makes new entities in the targets the context's segment map names for the sources'
// segments, reads the copies back (references found through the context) and runs their
// onPostClonePaste hooks, entity first, then its values. A copied root becomes the same root of
// its target when the target has none yet. Adding the copies is recorded by the target document's
// transactions like any addition, so a paste inside a transaction undoes as one step.
class CloningStream {
public:
    explicit CloningStream(CloningContext& context);
    CloningStream(const CloningStream&) = delete;
    CloningStream& operator=(const CloningStream&) = delete;

    [[nodiscard]] CloningContext& context() const noexcept { return m_context; }
    // False (and a report) when the entity is in no segment, or the map has no target for its
    // segment; an entity copied already is taken once.
    bool copy(Entity& source);
    // Makes and reads the copies; answers them in the order they were copied. The stream is spent
    // afterwards. Throws Kx::Exception when a copy cannot be read back.
    std::vector<Entity*> paste();
    [[nodiscard]] std::size_t copiedCount() const noexcept { return m_copied.size(); }

private:
    struct Copied {
        StrongRef<Entity> source;
        std::string rootId;
        std::size_t offset;
        std::size_t length;
    };

    CloningContext& m_context;
    BinaryWriteStream m_stream;
    std::vector<Copied> m_copied;
    // The sources of m_copied, so that copying an entity twice is found without a scan.
    std::unordered_set<const Entity*> m_copiedSources;
    bool m_pasted = false;
};

} // namespace Kx
