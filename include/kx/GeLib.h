#pragma once

// The JSON and text conversions of the geometry kernel's types (namespace Kx::Types).
#include <Types/GeLib/GeJSONCurves.h>
#include <Types/GeLib/GeJSONMatrices.h>
#include <Types/GeLib/GeJSONPlane.h>
#include <Types/GeLib/GeJSONPoints.h>
#include <Types/GeLib/GeJSONScalars.h>
#include <Types/GeLib/GeJSONStrings.h>
#include <Types/GeLib/GeText.h>
