#pragma once

namespace Kx {

enum class EStreamMode {
    eBinary,
    eXML,
};

// The data model's save stream. Callbacks ask the mode, then either use the typed writes of the
// binary stream (BinaryStreams.h) or the element of the member in the visitor context (XML).
class IWriteStreamBase {
public:
    virtual ~IWriteStreamBase() = default;
    [[nodiscard]] virtual EStreamMode mode() const noexcept = 0;
    [[nodiscard]] bool isBinary() const noexcept { return mode() == EStreamMode::eBinary; }
};

// The data model's load stream; the mirror of IWriteStreamBase. Reads are const on the interface
// because loading code receives the stream as const; the cursor is the stream's own state.
class IReadStreamBase {
public:
    virtual ~IReadStreamBase() = default;
    [[nodiscard]] virtual EStreamMode mode() const noexcept = 0;
    [[nodiscard]] bool isBinary() const noexcept { return mode() == EStreamMode::eBinary; }
};

} // namespace Kx
