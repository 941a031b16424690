#pragma once

// A growable in-memory byte stream that reads and writes through the core's stream interfaces
// (telvarin::platform::core::io), e.g. to hand a serialised asset or document part around.
#include <Types/Geometry/MemoryDataStream.h>
#include <core/io/DataStream.h>
