#pragma once

// The test entities: GeometryTestor (a member of each of the library's value types) and
// GeLibTestor (a member of each geometry kernel type), for tests, demonstrations and hosts that
// want a ready-made entity to put in a document.
#include <Types/Testors/GeLibTestor.h>
#include <Types/Testors/GeometryTestor.h>
