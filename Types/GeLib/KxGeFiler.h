#pragma once

#include <geometry/TmGeFiler.h>

#include <cstdint>
#include <vector>

class TmGeCurve3d;

namespace Kx {

class IReadStreamBase;
class IWriteStreamBase;
class VisitorContext;

// Lets the geometry kernel's field-by-field persistence (TmGeFileIO) write into and read from the
// data model's streams. Binary: each field with the stream's typed write of the same width. XML:
// each scalar is a child of the member's element named after its type and a running index
// ("double3") with the value in the attribute "Value"; a point or vector is one child carrying its
// coordinates as attributes. Point and vector writes do not advance the index but their reads do:
// element names skip the points while reading goes by position, and a document written and read by
// this filer stays consistent. Operations always report success: a stream that ends early throws
// Kx::Exception from the stream itself.
class KxGeFiler final : public TmGeFiler {
public:
    KxGeFiler(IWriteStreamBase* stream, const VisitorContext& context);
    KxGeFiler(const IReadStreamBase* stream, const VisitorContext& context);

    Tmk::ErrorStatus readBool(bool* value) override;
    Tmk::ErrorStatus readBoolean(Tmk::Boolean* value) override;
    Tmk::ErrorStatus readBytes(void* buffer, unsigned long count) override;
    Tmk::ErrorStatus readChar(char* value) override;
    Tmk::ErrorStatus readShort(std::int16_t* value) override;
    Tmk::ErrorStatus readLong(std::int32_t* value) override;
    Tmk::ErrorStatus readUChar(std::uint8_t* value) override;
    Tmk::ErrorStatus readUShort(std::uint16_t* value) override;
    Tmk::ErrorStatus readULong(std::uint32_t* value) override;
    Tmk::ErrorStatus readDouble(double* value) override;
    Tmk::ErrorStatus readPoint2d(TmGePoint2d* value) override;
    Tmk::ErrorStatus readPoint3d(TmGePoint3d* value) override;
    Tmk::ErrorStatus readVector2d(TmGeVector2d* value) override;
    Tmk::ErrorStatus readVector3d(TmGeVector3d* value) override;

    Tmk::ErrorStatus writeBool(bool value) override;
    Tmk::ErrorStatus writeBoolean(Tmk::Boolean value) override;
    Tmk::ErrorStatus writeBytes(const void* buffer, unsigned long count) override;
    Tmk::ErrorStatus writeChar(char value) override;
    Tmk::ErrorStatus writeShort(std::int16_t value) override;
    Tmk::ErrorStatus writeLong(std::int32_t value) override;
    Tmk::ErrorStatus writeUChar(std::uint8_t value) override;
    Tmk::ErrorStatus writeUShort(std::uint16_t value) override;
    Tmk::ErrorStatus writeULong(std::uint32_t value) override;
    Tmk::ErrorStatus writeDouble(double value) override;
    Tmk::ErrorStatus writePoint2d(const TmGePoint2d& value) override;
    Tmk::ErrorStatus writePoint3d(const TmGePoint3d& value) override;
    Tmk::ErrorStatus writeVector2d(const TmGeVector2d& value) override;
    Tmk::ErrorStatus writeVector3d(const TmGeVector3d& value) override;

    // A count, then each curve with its kind, so the reader can make curves of the right class.
    // The reader hands over ownership of the curves it appends.
    Tmk::ErrorStatus readCurve3dVec(std::vector<TmGeCurve3d*>* curves);
    Tmk::ErrorStatus writeCurve3dVec(const std::vector<TmGeCurve3d*>& curves);

    [[nodiscard]] std::uint32_t index() const noexcept { return m_index; }

private:
    template <class T>
    void writeScalar(int typeName, T value);
    template <class T>
    void readScalar(T* value);
    template <class T>
    void writeCoordinates(const char* element, const T& value);
    template <class T>
    void readCoordinates(T* value);

    IWriteStreamBase* m_writeStream = nullptr;
    const IReadStreamBase* m_readStream = nullptr;
    const VisitorContext& m_context;
    std::uint32_t m_index = 0;
};

} // namespace Kx
