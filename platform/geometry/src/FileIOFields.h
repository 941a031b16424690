#pragma once

// Field-level helpers shared by the TmGeFileIO sources: argument checks, the layout switches,
// and chained filer writes and reads that keep the first failure.

#include <geometry/TmGeEntityKind.h>
#include <geometry/TmGeFileIO.h>
#include <geometry/TmGeFiler.h>
#include <geometry/TmGeLibVersion.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TmGeInternal {

using Tmk::ErrorStatus;

// The layout switches of 3.2: a segment carries its parameter interval, a spline its periodic flag.
inline bool hasLayout3_2(const TmGeLibVersion& version)
{
    return version >= TmGeLibVersion::kTmGeLibVersion3_2;
}

inline ErrorStatus checkCall(const TmGeFiler* filer, const TmGeLibVersion& version)
{
    if (filer == nullptr)
        return ErrorStatus::eNullFiler;
    if (!version.isSupported())
        return ErrorStatus::eUnsupportedVersion;
    return ErrorStatus::eOk;
}

// Chains filer writes and keeps the first failure; later writes are skipped.
class Out {
public:
    explicit Out(TmGeFiler* filer) : m_filer(filer) {}

    Out& boolean(bool v) { return run([&] { return m_filer->writeBool(v); }); }
    // A list longer than any reader accepts is refused before its count is written.
    Out& count(std::size_t v)
    {
        if (m_status == ErrorStatus::eOk && v > TmGeFileIO::kMaxCount)
            m_status = ErrorStatus::eInvalidInput;
        return run([&] { return m_filer->writeULong(static_cast<std::uint32_t>(v)); });
    }
    Out& integer(int v) { return run([&] { return m_filer->writeLong(static_cast<std::int32_t>(v)); }); }
    Out& tag(Tmk::EEntityKind v) { return run([&] { return m_filer->writeUShort(static_cast<std::uint16_t>(v)); }); }
    Out& real(double v) { return run([&] { return m_filer->writeDouble(v); }); }
    Out& point(const TmGePoint2d& v) { return run([&] { return m_filer->writePoint2d(v); }); }
    Out& point(const TmGePoint3d& v) { return run([&] { return m_filer->writePoint3d(v); }); }
    Out& vector(const TmGeVector2d& v) { return run([&] { return m_filer->writeVector2d(v); }); }
    Out& vector(const TmGeVector3d& v) { return run([&] { return m_filer->writeVector3d(v); }); }

    [[nodiscard]] ErrorStatus result() const { return m_status; }

private:
    template <class F>
    Out& run(F&& write)
    {
        if (m_status == ErrorStatus::eOk)
            m_status = write();
        return *this;
    }

    TmGeFiler* m_filer;
    ErrorStatus m_status = ErrorStatus::eOk;
};

// Chains filer reads into local variables and keeps the first failure.
class In {
public:
    explicit In(TmGeFiler* filer) : m_filer(filer) {}

    In& boolean(bool& v) { return run([&] { return m_filer->readBool(&v); }); }
    In& integer(int& v)
    {
        std::int32_t raw = 0;
        run([&] { return m_filer->readLong(&raw); });
        v = raw;
        return *this;
    }
    In& count(std::uint32_t& v)
    {
        run([&] { return m_filer->readULong(&v); });
        if (m_status == ErrorStatus::eOk && v > TmGeFileIO::kMaxCount)
            m_status = ErrorStatus::eCorruptData;
        return *this;
    }
    In& tag(std::uint16_t& v) { return run([&] { return m_filer->readUShort(&v); }); }
    In& real(double& v) { return run([&] { return m_filer->readDouble(&v); }); }
    In& point(TmGePoint2d& v) { return run([&] { return m_filer->readPoint2d(&v); }); }
    In& point(TmGePoint3d& v) { return run([&] { return m_filer->readPoint3d(&v); }); }
    In& vector(TmGeVector2d& v) { return run([&] { return m_filer->readVector2d(&v); }); }
    In& vector(TmGeVector3d& v) { return run([&] { return m_filer->readVector3d(&v); }); }
    // Marks the data corrupt when the object built from them refuses them.
    In& accept(ErrorStatus built)
    {
        if (m_status == ErrorStatus::eOk && built != ErrorStatus::eOk)
            m_status = ErrorStatus::eCorruptData;
        return *this;
    }
    template <class T>
    In& reals(std::vector<T>& out, std::uint32_t n)
    {
        // Grow as the data arrive, so a lying count fails at the end of the data, not in malloc.
        for (std::uint32_t i = 0; i < n && ok(); ++i) {
            T value{};
            real(value);
            out.push_back(value);
        }
        return *this;
    }
    template <class T>
    In& points(std::vector<T>& out, std::uint32_t n)
    {
        for (std::uint32_t i = 0; i < n && ok(); ++i) {
            T value{};
            point(value);
            out.push_back(value);
        }
        return *this;
    }

    [[nodiscard]] bool ok() const { return m_status == ErrorStatus::eOk; }
    [[nodiscard]] ErrorStatus result() const { return m_status; }

private:
    template <class F>
    In& run(F&& read)
    {
        if (m_status == ErrorStatus::eOk)
            m_status = read();
        return *this;
    }

    TmGeFiler* m_filer;
    ErrorStatus m_status = ErrorStatus::eOk;
};

template <class Matrix, int N>
ErrorStatus writeMatrix(TmGeFiler* filer, const Matrix& m)
{
    Out out(filer);
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            out.real(m.entry[i][j]);
    return out.result();
}

template <class Matrix, int N>
ErrorStatus readMatrix(TmGeFiler* filer, Matrix& value)
{
    In in(filer);
    Matrix m;
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < N; ++j)
            in.real(m.entry[i][j]);
    if (in.ok())
        value = m;
    return in.result();
}


} // namespace TmGeInternal
