#pragma once

#include <datamodel/Entity.h>

#include <string>
#include <string_view>

namespace Kx {

class BlobPart;
class CloningStream;
class IBlobFolder;
class MemberSet;

// An entity that takes part in blob saving: it owns a blob part of its document, fills it before
// a save (prepareBlobPreSave: typically it makes the part afresh and a blob for it, which the
// part's serializer then writes) and takes it back after an open (syncToBlobAfterLoad). A trigger
// whose meta type has no callback is called by the data model itself, in the document's
// pre-asset-save and post-asset-load passes; a type with a callback calls them from its
// onPreAssetSave and onPostAssetLoad. `forCloning` and the stream are set when the blob goes along
// with a copy; saves and opens pass false and null.
class BlobSerializerTrigger : public Entity {
public:
    static constexpr std::string_view s_interfaceId = "Kx.BlobSerializerTrigger";

    using Entity::Entity;

    virtual void prepareBlobPreSave(IBlobFolder* blobFolder, bool forCloning, CloningStream* stream) = 0;
    virtual void syncToBlobAfterLoad(IBlobFolder* blobFolder, bool forCloning, CloningStream* stream) = 0;

    // The name of the trigger's part; empty until it made one.
    [[nodiscard]] const std::string& blobPartName() const noexcept { return m_blobPartName; }

    [[nodiscard]] void* queryInterface(std::string_view interfaceId) override;

protected:
    // A new part in `blobFolder` named after the two words, kept as this trigger's part.
    BlobPart* makeBlobPart(IBlobFolder* blobFolder, std::string_view baseName, std::string_view kind);
    // The trigger's part in `blobFolder`; null when it has none there.
    [[nodiscard]] BlobPart* blobPart(const IBlobFolder* blobFolder) const;
    // Deletes the trigger's part (and its blob) from the folder; the name is kept for the next one.
    bool deleteBlobPart(IBlobFolder* blobFolder);
    // Declares the part name as the member "blobPartName", so the trigger finds its part again
    // after an open. Derived classes call it from their declareMembers.
    void declareTriggerMembers(MemberSet* memberSet);

private:
    std::string m_blobPartName;
};

} // namespace Kx
