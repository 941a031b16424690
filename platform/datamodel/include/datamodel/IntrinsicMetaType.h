#pragma once

#include <datamodel/MemberMetaType.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace Kx {

// The data model's own meta types for scalar members. Binary: fixed width, little-endian (bool one
// byte, strings a 32-bit byte count and UTF-8). XML: an attribute of the owner's element named
// after the member. JSON: the plain JSON scalar.
template <class T>
class IntrinsicMetaType final : public MemberMetaType {
public:
    [[nodiscard]] static const IntrinsicMetaType* get();

    [[nodiscard]] std::size_t sizeInBytes(const VisitorContext&) const override { return sizeof(T); }
    void save(const void* value, IWriteStreamBase* stream, const VisitorContext& context) const override;
    void load(void* value, unsigned version, const IReadStreamBase* stream, const VisitorContext& context) const override;
    [[nodiscard]] std::wstring toString(const void* value, const VisitorContext& context) const override;
    void getJSON(const void* value, JSONGetStream* stream, const VisitorContext& context) const override;
    void setJSON(void* value, JSONSetStream* stream, const VisitorContext& context) const override;
    [[nodiscard]] bool readJSON(void* value, const JSONRef& json) const override;
    [[nodiscard]] bool equals(const void* first, const void* second) const override;
    void copy(void* target, const void* source) const override;
    [[nodiscard]] bool storedAsXmlAttribute() const noexcept override { return true; }

private:
    IntrinsicMetaType();
};

// The scalar types with an intrinsic meta type.
template <class T>
inline constexpr bool isIntrinsic = std::is_same_v<T, bool> || std::is_same_v<T, std::int32_t>
    || std::is_same_v<T, std::uint32_t> || std::is_same_v<T, std::int64_t> || std::is_same_v<T, std::uint64_t>
    || std::is_same_v<T, float> || std::is_same_v<T, double> || std::is_same_v<T, std::string>
    || std::is_same_v<T, std::wstring>;

} // namespace Kx
