#include "Types/Online/Sha256.h"

#include <openssl/evp.h>

#include <array>
#include <fstream>
#include <stdexcept>

namespace Kx::Types {

struct Sha256::Context {
    EVP_MD_CTX* digest = EVP_MD_CTX_new();
    ~Context() { EVP_MD_CTX_free(digest); }
};

Sha256::Sha256() : m_context(std::make_unique<Context>())
{
    if (m_context->digest == nullptr || EVP_DigestInit_ex(m_context->digest, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 is not available");
}

Sha256::~Sha256() = default;

void Sha256::update(std::span<const std::uint8_t> bytes)
{
    if (!bytes.empty())
        (void)EVP_DigestUpdate(m_context->digest, bytes.data(), bytes.size());
}

std::string Sha256::hex()
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    (void)EVP_DigestFinal_ex(m_context->digest, digest.data(), &length);
    static constexpr char s_digits[] = "0123456789abcdef";
    std::string text;
    for (unsigned int index = 0; index < length; ++index) {
        text += s_digits[digest[index] >> 4];
        text += s_digits[digest[index] & 15];
    }
    return text;
}

std::string Sha256::ofBytes(std::span<const std::uint8_t> bytes)
{
    Sha256 digest;
    digest.update(bytes);
    return digest.hex();
}

std::string Sha256::ofFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return {};
    Sha256 digest;
    std::array<char, 1 << 16> buffer{};
    while (in) {
        in.read(buffer.data(), buffer.size());
        digest.update({reinterpret_cast<const std::uint8_t*>(buffer.data()), static_cast<std::size_t>(in.gcount())});
    }
    return in.bad() ? std::string() : digest.hex();
}

} // namespace Kx::Types
