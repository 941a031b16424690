#include "Types/GeLib/KxGeFiler.h"

#include <datamodel/BinaryStreams.h>
#include <datamodel/VisitorContext.h>
#include <datamodel/XmlBulkStream.h>

#include <base/Exception.h>

#include <geometry/TmGeCurve3d.h>
#include <geometry/TmGeFileIO.h>

#include <geometry/TmGeFieldFilerImpl.h>

#include <boost/format.hpp>

#include <array>
#include <cstring>
#include <memory>
#include <string>

namespace Kx {

namespace {

// The element names of the fields, in TmGeField order; a Boolean is written as a bool.
constexpr std::array<const char*, 13> kElementNames{"bool", "bool", "HChar", "short", "long", "UChar", "UShort",
    "ULong", "double", "Point2d", "Point3d", "Vector2d", "Vector3d"};
constexpr const char* kBytesElement = "Bytes";

constexpr const char* elementName(TmGeField field)
{
    return kElementNames[static_cast<std::size_t>(field)];
}

constexpr const char* kValue = "Value";

// XML attributes hold 32-bit integers at least; the narrow kinds widen for storage.
template <class T>
auto storedForm(T value)
{
    if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, double>)
        return value;
    else if constexpr (std::is_signed_v<T>)
        return static_cast<std::int32_t>(value);
    else
        return static_cast<std::uint32_t>(value);
}

template <class T>
T fromAttribute(const XMLAttributeProxy& attribute)
{
    if constexpr (std::is_same_v<T, bool>)
        return attribute.asBool();
    else if constexpr (std::is_same_v<T, double>)
        return attribute.asDouble();
    else if constexpr (std::is_signed_v<T>)
        return static_cast<T>(attribute.asInt32());
    else
        return static_cast<T>(attribute.asUInt32());
}

std::string toHex(const void* buffer, unsigned long count)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(count * 2);
    for (unsigned long i = 0; i < count; ++i) {
        const auto byte = static_cast<const std::uint8_t*>(buffer)[i];
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return text;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

// Fills `count` bytes from their hexadecimal text, which must hold exactly two digits a byte: a
// damaged or shortened text would otherwise pass as zeros into the geometry it describes.
void fromHex(const std::string& text, void* buffer, unsigned long count)
{
    const auto damaged = [&](const std::string& what) {
        return Exception(L"The data is damaged: a geometry value cannot be read.",
            "Bytes: " + what + " in \"" + text.substr(0, 64) + "\"");
    };
    if (text.size() != 2 * static_cast<std::size_t>(count))
        throw damaged(std::to_string(text.size()) + " digits for " + std::to_string(count) + " bytes");
    auto* bytes = static_cast<std::uint8_t*>(buffer);
    for (unsigned long i = 0; i < count; ++i) {
        const int high = hexDigit(text[2 * i]);
        const int low = hexDigit(text[2 * i + 1]);
        if (high < 0 || low < 0)
            throw damaged("a character that is not a hexadecimal digit at " + std::to_string(high < 0 ? 2 * i : 2 * i + 1));
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
}

template <class T>
constexpr bool isThreeDimensional = requires(T value) { value.z; };

template <class T>
constexpr bool isCoordinates = requires(T value) { value.x; };

} // namespace

KxGeFiler::KxGeFiler(IWriteStreamBase* stream, const VisitorContext& context) : m_writeStream(stream), m_context(context) {}

KxGeFiler::KxGeFiler(const IReadStreamBase* stream, const VisitorContext& context, const TmGeLibVersion& layout)
    : m_readStream(stream)
    , m_context(context)
    , m_layout(layout)
{
}

Tmk::ErrorStatus KxGeFiler::readCurve3dVec(std::vector<TmGeCurve3d*>* curves)
{
    std::uint32_t count = 0;
    readULong(&count);
    if (count > TmGeFileIO::kMaxCount)
        return Tmk::ErrorStatus::eCorruptData;
    std::vector<std::unique_ptr<TmGeCurve3d>> read;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::unique_ptr<TmGeCurve3d> curve;
        if (const Tmk::ErrorStatus status = TmGeFileIO::inCurve3d(this, curve, m_layout); status != Tmk::ErrorStatus::eOk)
            return status;
        read.push_back(std::move(curve));
    }
    curves->reserve(curves->size() + read.size());
    for (auto& curve : read)
        curves->push_back(curve.release());
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus KxGeFiler::writeCurve3dVec(const std::vector<TmGeCurve3d*>& curves)
{
    if (curves.size() > TmGeFileIO::kMaxCount)
        return Tmk::ErrorStatus::eInvalidInput;
    writeULong(static_cast<std::uint32_t>(curves.size()));
    for (const TmGeCurve3d* curve : curves)
        if (const Tmk::ErrorStatus status = TmGeFileIO::outCurve3d(this, *curve, TmGeLibVersion::kTmGeLibVersion3_2);
            status != Tmk::ErrorStatus::eOk)
            return status;
    return Tmk::ErrorStatus::eOk;
}

template <TmGeField field, class T>
Tmk::ErrorStatus KxGeFiler::readField(T* value)
{
    if constexpr (field == TmGeField::eBoolean) {
        // Cleared first: a read that throws half-way leaves false rather than what was there.
        *value = 0;
        bool flag = false;
        readScalar(&flag);
        *value = flag;
    } else if constexpr (isCoordinates<T>) {
        readCoordinates(value);
    } else {
        readScalar(value);
    }
    return Tmk::ErrorStatus::eOk;
}

template <TmGeField field, class T>
Tmk::ErrorStatus KxGeFiler::writeField(const T& value)
{
    if constexpr (field == TmGeField::eBoolean)
        writeScalar(elementName(field), value != 0);
    else if constexpr (isCoordinates<T>)
        writeCoordinates(elementName(field), value);
    else
        writeScalar(elementName(field), value);
    return Tmk::ErrorStatus::eOk;
}

template <class T>
void KxGeFiler::writeScalar(const char* element, T value)
{
    if (BinaryWriteStream* binary = asBinary(m_writeStream)) {
        binary->write(value);
    } else {
        XMLNode node = XmlBulkStream::nodeFromVisitorContext(m_writeStream, m_context);
        XMLNode child = node.appendChild((boost::format("%1%%2%") % element % m_index).str());
        child[kValue] = storedForm(value);
    }
    ++m_index;
}

template <class T>
void KxGeFiler::readScalar(T* value)
{
    if (const BinaryReadStream* binary = asBinary(m_readStream)) {
        binary->read(*value);
    } else {
        const XMLNode node = XmlBulkStream::nodeFromVisitorContext(m_readStream, m_context);
        *value = fromAttribute<T>(node.childAt(m_index)[kValue]);
    }
    ++m_index;
}

template <class T>
void KxGeFiler::writeCoordinates(const char* element, const T& value)
{
    if (BinaryWriteStream* binary = asBinary(m_writeStream)) {
        binary->write(value.x);
        binary->write(value.y);
        if constexpr (isThreeDimensional<T>)
            binary->write(value.z);
        return;
    }
    XMLNode node = XmlBulkStream::nodeFromVisitorContext(m_writeStream, m_context);
    XMLNode child = node.appendChild(element);
    child["x"] = value.x;
    child["y"] = value.y;
    if constexpr (isThreeDimensional<T>)
        child["z"] = value.z;
}

template <class T>
void KxGeFiler::readCoordinates(T* value)
{
    if (const BinaryReadStream* binary = asBinary(m_readStream)) {
        binary->read(value->x);
        binary->read(value->y);
        if constexpr (isThreeDimensional<T>)
            binary->read(value->z);
    } else {
        const XMLNode node = XmlBulkStream::nodeFromVisitorContext(m_readStream, m_context);
        const XMLNode child = node.childAt(m_index);
        value->x = child["x"].asDouble();
        value->y = child["y"].asDouble();
        if constexpr (isThreeDimensional<T>)
            value->z = child["z"].asDouble();
    }
    ++m_index;
}

Tmk::ErrorStatus KxGeFiler::readBytes(void* buffer, unsigned long count)
{
    if (const BinaryReadStream* binary = asBinary(m_readStream)) {
        binary->readBytes(buffer, count);
    } else {
        const XMLNode node = XmlBulkStream::nodeFromVisitorContext(m_readStream, m_context);
        fromHex(node.childAt(m_index)[kValue].asString(), buffer, count);
    }
    ++m_index;
    return Tmk::ErrorStatus::eOk;
}

Tmk::ErrorStatus KxGeFiler::writeBytes(const void* buffer, unsigned long count)
{
    if (BinaryWriteStream* binary = asBinary(m_writeStream)) {
        binary->writeBytes(buffer, count);
    } else {
        XMLNode node = XmlBulkStream::nodeFromVisitorContext(m_writeStream, m_context);
        XMLNode child = node.appendChild((boost::format("%1%%2%") % kBytesElement % m_index).str());
        child[kValue] = toHex(buffer, count);
    }
    ++m_index;
    return Tmk::ErrorStatus::eOk;
}

} // namespace Kx

template class TmGeFieldFiler<Kx::KxGeFiler>;
