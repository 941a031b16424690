#pragma once

#include <geometry/TmGeFieldFiler.h>
#include <geometry/TmGeLibVersion.h>

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
// this filer stays consistent. Scalar operations always report success: a stream that ends early,
// or hexadecimal bytes with a character that is not a digit, throw Kx::Exception.
class KxGeFiler final : public TmGeFieldFiler<KxGeFiler> {
public:
    KxGeFiler(IWriteStreamBase* stream, const VisitorContext& context);
    // `layout` is the kernel's field layout the data were written in; curve lists read by it.
    KxGeFiler(const IReadStreamBase* stream, const VisitorContext& context,
        const TmGeLibVersion& layout = TmGeLibVersion::kTmGeLibVersion3_2);

    Tmk::ErrorStatus readBytes(void* buffer, unsigned long count) override;
    Tmk::ErrorStatus writeBytes(const void* buffer, unsigned long count) override;

    // A list of curves of any kind: its count (a ULong), then each curve's kind tag and fields, in
    // the 3.2 layout when written. The curves read are appended to `curves` and owned by the caller;
    // on a kernel failure (an unknown kind, a count beyond TmGeFileIO::kMaxCount) nothing is
    // appended and the kernel's status is answered.
    Tmk::ErrorStatus readCurve3dVec(std::vector<TmGeCurve3d*>* curves);
    Tmk::ErrorStatus writeCurve3dVec(const std::vector<TmGeCurve3d*>& curves);

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
    TmGeLibVersion m_layout = TmGeLibVersion::kTmGeLibVersion3_2;
};

} // namespace Kx

extern template class TmGeFieldFiler<Kx::KxGeFiler>;
