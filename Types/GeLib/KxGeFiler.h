#pragma once

#include <geometry/TmGeFieldFiler.h>

#include <cstdint>

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
class KxGeFiler final : public TmGeFieldFiler<KxGeFiler> {
public:
    KxGeFiler(IWriteStreamBase* stream, const VisitorContext& context);
    KxGeFiler(const IReadStreamBase* stream, const VisitorContext& context);

    Tmk::ErrorStatus readBytes(void* buffer, unsigned long count) override;
    Tmk::ErrorStatus writeBytes(const void* buffer, unsigned long count) override;

    [[nodiscard]] std::uint32_t index() const noexcept { return m_index; }

private:
    friend class TmGeFieldFiler<KxGeFiler>;

    template <TmGeField field, class T>
    Tmk::ErrorStatus readField(T* value);
    template <TmGeField field, class T>
    Tmk::ErrorStatus writeField(const T& value);
    template <class T>
    void writeScalar(const char* element, T value);
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

extern template class TmGeFieldFiler<Kx::KxGeFiler>;
