#pragma once

// Field-level helpers shared by the TmGeFileIO sources: argument checks, the layout switches,
// and chained filer writes and reads that keep the first failure.

#include <geometry/TmGeEntityKind.h>
#include <geometry/TmGeFileIO.h>
#include <geometry/TmGeFiler.h>
#include <geometry/TmGeLibVersion.h>

#include <cstddef>
#include <cstdint>
#include <utility>
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

// How one class lays out its fields: specialised beside the outFields/inFields that use it, with
// static write(Out&, const T&, version) and read(In&, T&, version). read assigns the value only
// when every field arrived and the class accepted them.
template <class T>
struct Layout;

// Single filer values: points and vectors.
template <class T>
struct PointLayout {
    static void write(Out& out, const T& value, const TmGeLibVersion&) { out.point(value); }
    static void read(In& in, T& value, const TmGeLibVersion&)
    {
        T v;
        if (in.point(v).ok())
            value = v;
    }
};

template <class T>
struct VectorLayout {
    static void write(Out& out, const T& value, const TmGeLibVersion&) { out.vector(value); }
    static void read(In& in, T& value, const TmGeLibVersion&)
    {
        T v;
        if (in.vector(v).ok())
            value = v;
    }
};

// An N x N matrix, row by row.
template <class Matrix, int N>
struct MatrixLayout {
    static void write(Out& out, const Matrix& m, const TmGeLibVersion&)
    {
        for (int i = 0; i < N; ++i)
            for (int j = 0; j < N; ++j)
                out.real(m.entry[i][j]);
    }
    static void read(In& in, Matrix& value, const TmGeLibVersion&)
    {
        Matrix m;
        for (int i = 0; i < N; ++i)
            for (int j = 0; j < N; ++j)
                in.real(m.entry[i][j]);
        if (in.ok())
            value = m;
    }
};

// For the classes whose setters validate: builds a fresh object from the fields read with
// build(T&) -> ErrorStatus and assigns it only when the reads and the build succeeded.
template <class T, class Build>
void acceptBuilt(In& in, T& value, Build&& build)
{
    T candidate;
    if (in.ok())
        in.accept(build(candidate));
    if (in.ok())
        value = std::move(candidate);
}

// The body of every outFields / inFields: check the call, then the class's layout.
template <class T>
ErrorStatus writeLayout(TmGeFiler* filer, const T& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    Out out(filer);
    Layout<T>::write(out, value, version);
    return out.result();
}

template <class T>
ErrorStatus readLayout(TmGeFiler* filer, T& value, const TmGeLibVersion& version)
{
    if (const ErrorStatus s = checkCall(filer, version); s != ErrorStatus::eOk)
        return s;
    In in(filer);
    Layout<T>::read(in, value, version);
    return in.result();
}

} // namespace TmGeInternal
