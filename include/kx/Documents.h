#pragma once

// Documents and the data model they are made of: meta types and their registry, member sets,
// entities and strong references, segments, transactions with undo and redo, blob parts, copy and
// paste, migration, the binary, XML and JSON streams, and the .kxd document file.
#include <datamodel/BinaryStreams.h>
#include <datamodel/BlobFolder.h>
#include <datamodel/BlobPart.h>
#include <datamodel/BlobSerializer.h>
#include <datamodel/BlobSerializerTrigger.h>
#include <datamodel/CloningContext.h>
#include <datamodel/CloningStream.h>
#include <datamodel/DataModelCallback.h>
#include <datamodel/Document.h>
#include <datamodel/DocumentAdapter.h>
#include <datamodel/DocumentFile.h>
#include <datamodel/DocumentManifest.h>
#include <datamodel/DocumentRegistry.h>
#include <datamodel/Entity.h>
#include <datamodel/EntityChange.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/EntityMetaType.h>
#include <datamodel/IntrinsicMetaType.h>
#include <datamodel/JSONStreams.h>
#include <datamodel/MetaTypeRegistry.h>
#include <datamodel/MigrationLog.h>
#include <datamodel/MigrationStep.h>
#include <datamodel/Segment.h>
#include <datamodel/StrongRef.h>
#include <datamodel/StrongRefMetaType.h>
#include <datamodel/TransactionManager.h>
#include <datamodel/ValueMetaType.h>
#include <datamodel/XmlBulkStream.h>
