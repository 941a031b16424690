#pragma once

#include <geometry/TmGePoint2d.h>
#include <geometry/TmGePoint3d.h>
#include <geometry/TmGeVector2d.h>
#include <geometry/TmGeVector3d.h>
#include <geometry/TmkErrorStatus.h>

#include <cstdint>

// The sink and source of TmGeFileIO. A host derives from it to put geometry fields into its own
// streams. Widths are fixed whatever the platform: Char and UChar 8 bits, Short and UShort 16,
// Long and ULong 32, Double an IEEE double; Bool is one flag, Boolean the kernel's 32-bit
// Tmk::Boolean. A read that cannot deliver its value returns a failure status (eEndOfFile,
// eCorruptData); TmGeFileIO stops at the first failure and passes it on.
class TmGeFiler {
public:
    virtual ~TmGeFiler() = default;

    virtual Tmk::ErrorStatus readBool(bool* value) = 0;
    virtual Tmk::ErrorStatus readBoolean(Tmk::Boolean* value) = 0;
    virtual Tmk::ErrorStatus readBytes(void* buffer, unsigned long count) = 0;
    virtual Tmk::ErrorStatus readChar(char* value) = 0;
    virtual Tmk::ErrorStatus readShort(std::int16_t* value) = 0;
    virtual Tmk::ErrorStatus readLong(std::int32_t* value) = 0;
    virtual Tmk::ErrorStatus readUChar(std::uint8_t* value) = 0;
    virtual Tmk::ErrorStatus readUShort(std::uint16_t* value) = 0;
    virtual Tmk::ErrorStatus readULong(std::uint32_t* value) = 0;
    virtual Tmk::ErrorStatus readDouble(double* value) = 0;
    virtual Tmk::ErrorStatus readPoint2d(TmGePoint2d* value) = 0;
    virtual Tmk::ErrorStatus readPoint3d(TmGePoint3d* value) = 0;
    virtual Tmk::ErrorStatus readVector2d(TmGeVector2d* value) = 0;
    virtual Tmk::ErrorStatus readVector3d(TmGeVector3d* value) = 0;

    virtual Tmk::ErrorStatus writeBool(bool value) = 0;
    virtual Tmk::ErrorStatus writeBoolean(Tmk::Boolean value) = 0;
    virtual Tmk::ErrorStatus writeBytes(const void* buffer, unsigned long count) = 0;
    virtual Tmk::ErrorStatus writeChar(char value) = 0;
    virtual Tmk::ErrorStatus writeShort(std::int16_t value) = 0;
    virtual Tmk::ErrorStatus writeLong(std::int32_t value) = 0;
    virtual Tmk::ErrorStatus writeUChar(std::uint8_t value) = 0;
    virtual Tmk::ErrorStatus writeUShort(std::uint16_t value) = 0;
    virtual Tmk::ErrorStatus writeULong(std::uint32_t value) = 0;
    virtual Tmk::ErrorStatus writeDouble(double value) = 0;
    virtual Tmk::ErrorStatus writePoint2d(const TmGePoint2d& value) = 0;
    virtual Tmk::ErrorStatus writePoint3d(const TmGePoint3d& value) = 0;
    virtual Tmk::ErrorStatus writeVector2d(const TmGeVector2d& value) = 0;
    virtual Tmk::ErrorStatus writeVector3d(const TmGeVector3d& value) = 0;

protected:
    TmGeFiler() = default;
    TmGeFiler(const TmGeFiler&) = default;
    TmGeFiler& operator=(const TmGeFiler&) = default;
};
