#pragma once

namespace Kx {

// The operations the application is in the middle of, by kind. Work that would pull the ground
// from under such an operation (releasing the material libraries while a document is being saved
// or opened, say) asks first and holds back. Kinds are the application's: 2 is a document
// operation that reads or writes materials. Safe to use from any thread.
class OperationContext {
public:
    [[nodiscard]] static bool isOperationActive(int kind);

    // An operation of `kind` is active while this object lives; operations nest and overlap.
    class Scope {
    public:
        explicit Scope(int kind);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        int m_kind;
    };
};

} // namespace Kx
