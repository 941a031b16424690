#include "datamodel/BlobSerializerTrigger.h"

#include "datamodel/BlobFolder.h"
#include "datamodel/BlobPart.h"
#include "datamodel/Document.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/IntrinsicMetaType.h"
#include "datamodel/MemberSet.h"
#include "datamodel/VisitorContext.h"

#include <typeinfo>

namespace Kx {

namespace {

IBlobFolder* folderOf(const Entity& entity, const VisitorContext& context)
{
    Document* document = context.asset() != nullptr ? context.asset() : entity.asset();
    return document != nullptr ? document->blobFolder() : nullptr;
}

} // namespace

void* BlobSerializerTrigger::queryInterface(std::string_view interfaceId)
{
    if (interfaceId == s_interfaceId)
        return this;
    return Entity::queryInterface(interfaceId);
}

BlobPart* BlobSerializerTrigger::makeBlobPart(IBlobFolder* blobFolder, std::string_view baseName, std::string_view kind)
{
    BlobPart* part = blobFolder != nullptr ? blobFolder->makeBlobPart(baseName, kind) : nullptr;
    if (part != nullptr)
        m_blobPartName = part->name();
    return part;
}

BlobPart* BlobSerializerTrigger::blobPart(const IBlobFolder* blobFolder) const
{
    if (blobFolder == nullptr || m_blobPartName.empty())
        return nullptr;
    return blobFolder->findBlobPart(m_blobPartName);
}

bool BlobSerializerTrigger::deleteBlobPart(IBlobFolder* blobFolder)
{
    return blobFolder != nullptr && !m_blobPartName.empty() && blobFolder->deleteBlobPart(m_blobPartName);
}

void BlobSerializerTrigger::declareTriggerMembers(MemberSet* memberSet)
{
    memberSet->addNewMember("blobPartName", &m_blobPartName, typeid(std::string).name(),
        IntrinsicMetaType<std::string>::get());
}

void triggerPreAssetSave(BlobSerializerTrigger& trigger, const VisitorContext& context)
{
    trigger.prepareBlobPreSave(folderOf(trigger, context), false, nullptr);
}

void triggerPostAssetLoad(BlobSerializerTrigger& trigger, const VisitorContext& context)
{
    trigger.syncToBlobAfterLoad(folderOf(trigger, context), false, nullptr);
}

} // namespace Kx
