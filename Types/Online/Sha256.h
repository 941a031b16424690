#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace Kx::Types {

// SHA-256 of bytes fed in pieces, answered as 64 lower-case hex digits (OpenSSL's digest).
class Sha256 {
public:
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void update(std::span<const std::uint8_t> bytes);
    // Ends the digest; the object must not be fed afterwards.
    [[nodiscard]] std::string hex();

    [[nodiscard]] static std::string ofBytes(std::span<const std::uint8_t> bytes);
    // Empty when the file cannot be read.
    [[nodiscard]] static std::string ofFile(const std::filesystem::path& file);

private:
    struct Context;
    std::unique_ptr<Context> m_context;
};

} // namespace Kx::Types
