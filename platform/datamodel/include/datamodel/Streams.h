#pragma once

namespace Kx {

enum class EStreamMode {
    eBinary,
    eXML,
};

// The data model's save stream. Callbacks ask the mode, then either use the typed writes of the
// binary stream (BinaryStreams.h) or the element of the member in the visitor context (XML).
// The mode is fixed at construction and answered without a virtual call: every value saved asks it.
class IWriteStreamBase {
public:
    virtual ~IWriteStreamBase() = default;
    [[nodiscard]] EStreamMode mode() const noexcept { return m_mode; }
    [[nodiscard]] bool isBinary() const noexcept { return m_mode == EStreamMode::eBinary; }

protected:
    explicit IWriteStreamBase(EStreamMode mode) noexcept : m_mode(mode) {}

private:
    EStreamMode m_mode;
};

// The data model's load stream; the mirror of IWriteStreamBase. Reads are const on the interface
// because loading code receives the stream as const; the cursor is the stream's own state.
class IReadStreamBase {
public:
    virtual ~IReadStreamBase() = default;
    [[nodiscard]] EStreamMode mode() const noexcept { return m_mode; }
    [[nodiscard]] bool isBinary() const noexcept { return m_mode == EStreamMode::eBinary; }

protected:
    explicit IReadStreamBase(EStreamMode mode) noexcept : m_mode(mode) {}

private:
    EStreamMode m_mode;
};

} // namespace Kx
