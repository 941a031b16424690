#pragma once

// The geometry kernel's types as values of the data model: their meta types and callbacks
// (Kx::TmGePoint3dValueMetaType, ...), the filer that carries the kernel's field I/O into the data
// model's streams, and their JSON and text conversions (namespace Kx::Types).
#include <Types/GeLib/GeJSONCurves.h>
#include <Types/GeLib/GeJSONMatrices.h>
#include <Types/GeLib/GeJSONPlane.h>
#include <Types/GeLib/GeJSONPoints.h>
#include <Types/GeLib/GeJSONScalars.h>
#include <Types/GeLib/GeJSONStrings.h>
#include <Types/GeLib/GeMetaTypes.h>
#include <Types/GeLib/GeText.h>
#include <Types/GeLib/KxGeFiler.h>
