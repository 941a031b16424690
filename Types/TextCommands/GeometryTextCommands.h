#pragma once
// The geometry and matrix text commands: vector arithmetic, equality tests, lines and planes built
// from loose properties and read back, and local-to-world matrix chains, all with their arguments
// and results in the JSON forms of GeJSONStrings.h. Their names, descriptions and script names are
// in the one table of TextCommandTable.cpp.
#include <base/TextCommand.h>

namespace Kx {

KX_TEXT_COMMAND_CLASS(TextCmdGeometryAddVector3dToPoint3d);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryAddVector3ds);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryAreLine3dsEqual);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryArePlanesEqual);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryArePoint3dEqual);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryAreVector3dEqual);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryCrossProduct);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryDotProduct);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryLine3dCreate);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryLine3dProperties);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryPlaneCreate);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryPlaneProperties);
KX_TEXT_COMMAND_CLASS(TextCmdGeometrySubtractPoint3dFromPoint3d);
KX_TEXT_COMMAND_CLASS(TextCmdGeometrySubtractVector3ds);
KX_TEXT_COMMAND_CLASS(TextCmdGeometryVector3dMultiply);
KX_TEXT_COMMAND_CLASS(TextCmdLocalToWorldLine3d);
KX_TEXT_COMMAND_CLASS(TextCmdLocalToWorldPlane);
KX_TEXT_COMMAND_CLASS(TextCmdLocalToWorldPoint3d);
KX_TEXT_COMMAND_CLASS(TextCmdLocalToWorldVector3d);
KX_TEXT_COMMAND_CLASS(TextCmdWorldToLocalLine3d);
KX_TEXT_COMMAND_CLASS(TextCmdWorldToLocalPlane);
KX_TEXT_COMMAND_CLASS(TextCmdWorldToLocalPoint3d);
KX_TEXT_COMMAND_CLASS(TextCmdWorldToLocalVector3d);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixAreMatricesEqual);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixIdentity);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixMultiply);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixPopBack);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixPopFront);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixPushBack);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixPushFront);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixSetToRotation);
KX_TEXT_COMMAND_CLASS(TextCmdMatrixSetToTranslation);

} // namespace Kx
