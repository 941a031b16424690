#include <Types/GeLib/KxGeFiler.h>

#include <geometry/TmGe.h>

#include <datamodel/BinaryStreams.h>
#include <datamodel/VisitorContext.h>
#include <datamodel/XmlBulkStream.h>

#include <base/Exception.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

namespace Kx {
namespace {

// Every scalar kind once, with a value at the edge of its width.
void writeAllKinds(KxGeFiler& filer)
{
    filer.writeBool(true);
    filer.writeChar(-128);
    filer.writeShort(std::numeric_limits<std::int16_t>::min());
    filer.writeLong(std::numeric_limits<std::int32_t>::min());
    filer.writeUChar(255);
    filer.writeUShort(65535);
    filer.writeULong(std::numeric_limits<std::uint32_t>::max());
    filer.writeDouble(1.0 / 3.0);
    const std::uint8_t bytes[3] = {0x00, 0xAB, 0xFF};
    filer.writeBytes(bytes, sizeof bytes);
    filer.writeBoolean(7);
}

void readAndCheckAllKinds(KxGeFiler& filer)
{
    bool flag = false;
    char character = 0;
    std::int16_t shortValue = 0;
    std::int32_t longValue = 0;
    std::uint8_t unsignedChar = 0;
    std::uint16_t unsignedShort = 0;
    std::uint32_t unsignedLong = 0;
    double real = 0;
    std::uint8_t bytes[3] = {};
    Tmk::Boolean boolean = 5;
    EXPECT_EQ(filer.readBool(&flag), Tmk::ErrorStatus::eOk);
    filer.readChar(&character);
    filer.readShort(&shortValue);
    filer.readLong(&longValue);
    filer.readUChar(&unsignedChar);
    filer.readUShort(&unsignedShort);
    filer.readULong(&unsignedLong);
    filer.readDouble(&real);
    filer.readBytes(bytes, sizeof bytes);
    filer.readBoolean(&boolean);
    EXPECT_TRUE(flag);
    EXPECT_EQ(character, -128);
    EXPECT_EQ(shortValue, std::numeric_limits<std::int16_t>::min());
    EXPECT_EQ(longValue, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(unsignedChar, 255);
    EXPECT_EQ(unsignedShort, 65535);
    EXPECT_EQ(unsignedLong, std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(real, 1.0 / 3.0);
    EXPECT_EQ(bytes[1], 0xAB);
    EXPECT_EQ(bytes[2], 0xFF);
    EXPECT_EQ(boolean, 1);
}

TEST(KxGeFiler, BinaryWritesEachKindWithItsOwnWidthAndNothingElse)
{
    BinaryWriteStream out;
    const VisitorContext context(eVisitSave);
    KxGeFiler writer(&out, context);
    writeAllKinds(writer);
    EXPECT_EQ(out.size(), 1u + 1 + 2 + 4 + 1 + 2 + 4 + 8 + 3 + 1);

    BinaryReadStream in(out.bytes());
    const VisitorContext loading(eVisitLoad);
    KxGeFiler reader(&in, loading);
    readAndCheckAllKinds(reader);
    EXPECT_TRUE(in.atEnd());
}

TEST(KxGeFiler, XmlNamesEachScalarByKindAndRunningIndex)
{
    XmlWriteStream out;
    XMLNode root = out.root();
    XMLNode member = root.appendChild("member");
    const VisitorContext context = VisitorContext(eVisitSave).withEntity(nullptr, member);
    KxGeFiler writer(&out, context);
    writeAllKinds(writer);
    const char* names[] = {"bool0", "HChar1", "short2", "long3", "UChar4", "UShort5", "ULong6", "double7", "Bytes8", "bool9"};
    ASSERT_EQ(member.childCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(member.childAt(i).name(), names[i]);
    EXPECT_EQ(member.childAt(8)["Value"].asString(), "00ABFF");

    XmlReadStream in(out.toString());
    const VisitorContext loading = VisitorContext(eVisitLoad).withEntity(nullptr, in.root().child("member"));
    KxGeFiler reader(&in, loading);
    readAndCheckAllKinds(reader);
}

// Points do not take an index when written but take a position when read: later names skip the
// point, and reading by position still finds every value.
TEST(KxGeFiler, PointsSkipTheIndexWhenWrittenButNotWhenRead)
{
    XmlWriteStream out;
    XMLNode root = out.root();
    XMLNode member = root.appendChild("member");
    const VisitorContext context = VisitorContext(eVisitSave).withEntity(nullptr, member);
    KxGeFiler writer(&out, context);
    writer.writeBool(true);
    writer.writePoint3d(TmGePoint3d(1, 2, 3));
    writer.writeDouble(0.5);
    EXPECT_EQ(writer.index(), 2u);
    ASSERT_EQ(member.childCount(), 3u);
    EXPECT_EQ(member.childAt(0).name(), "bool0");
    EXPECT_EQ(member.childAt(1).name(), "Point3d");
    EXPECT_EQ(member.childAt(1)["z"].asDouble(), 3.0);
    EXPECT_EQ(member.childAt(2).name(), "double1");

    const VisitorContext loading = VisitorContext(eVisitLoad).withEntity(nullptr, member);
    XmlReadStream in("<unused/>");
    KxGeFiler reader(&in, loading);
    bool flag = false;
    TmGePoint3d point;
    double real = 0;
    reader.readBool(&flag);
    reader.readPoint3d(&point);
    reader.readDouble(&real);
    EXPECT_TRUE(flag);
    EXPECT_EQ(point, TmGePoint3d(1, 2, 3));
    EXPECT_EQ(real, 0.5);
    EXPECT_EQ(reader.index(), 3u);
}

// The filer's own list operations write what the kernel's list layout reads, in both directions,
// and a reader that meets an unknown kind leaves the caller's list untouched.
TEST(KxGeFiler, CurveListOperationsShareTheKernelLayout)
{
    TmGeLineSeg3d segment(TmGePoint3d(0, 0, 0), TmGePoint3d(1, 2, 3));
    TmGeCircArc3d arc(TmGePoint3d(0, 0, 0), TmGeVector3d(0, 0, 1), 2.0);
    TmGeCurve3dVec curves;
    curves.append(segment);
    curves.append(arc);
    const VisitorContext context(eVisitSave);

    BinaryWriteStream byFiler;
    KxGeFiler filerWriter(&byFiler, context);
    EXPECT_EQ(filerWriter.writeCurve3dVec(curves.curves()), Tmk::ErrorStatus::eOk);
    BinaryWriteStream byKernel;
    KxGeFiler kernelWriter(&byKernel, context);
    ASSERT_EQ(TmGeFileIO::outFields(&kernelWriter, curves, TmGeLibVersion::kTmGeLibVersion3_2), Tmk::ErrorStatus::eOk);
    const auto filerBytes = byFiler.bytes();
    const auto kernelBytes = byKernel.bytes();
    EXPECT_TRUE(std::equal(filerBytes.begin(), filerBytes.end(), kernelBytes.begin(), kernelBytes.end()));

    BinaryReadStream kernelIn(byFiler.bytes());
    KxGeFiler kernelReader(&kernelIn, context);
    TmGeCurve3dVec byKernelRead;
    ASSERT_EQ(TmGeFileIO::inFields(&kernelReader, byKernelRead, TmGeLibVersion::kTmGeLibVersion3_2), Tmk::ErrorStatus::eOk);
    ASSERT_EQ(byKernelRead.size(), 2u);
    EXPECT_TRUE(byKernelRead[1].isEqualTo(arc));

    BinaryReadStream in(byKernel.bytes());
    KxGeFiler reader(&in, context);
    TmGeCurve3d* kept = new TmGeLineSeg3d(segment);
    std::vector<TmGeCurve3d*> read{kept};
    EXPECT_EQ(reader.readCurve3dVec(&read), Tmk::ErrorStatus::eOk);
    TmGeCurve3dVec owned;
    owned.adopt(read);
    ASSERT_EQ(owned.size(), 3u) << "the curves read are appended";
    EXPECT_TRUE(owned[1].isEqualTo(segment));
    EXPECT_TRUE(owned[2].isEqualTo(arc));

    std::vector<std::uint8_t> damaged(kernelBytes.begin(), kernelBytes.end());
    damaged[4] = 0xEE; // the first curve's kind tag
    damaged[5] = 0xEE;
    BinaryReadStream badIn(damaged);
    KxGeFiler badReader(&badIn, context);
    std::vector<TmGeCurve3d*> untouched;
    EXPECT_EQ(badReader.readCurve3dVec(&untouched), Tmk::ErrorStatus::eCorruptData);
    EXPECT_TRUE(untouched.empty());
}

TEST(KxGeFiler, ABooleanReadThatFailsLeavesFalse)
{
    const std::vector<std::uint8_t> nothing;
    BinaryReadStream empty(nothing);
    const VisitorContext context(eVisitLoad);
    KxGeFiler reader(&empty, context);
    Tmk::Boolean value = 7;
    EXPECT_THROW(reader.readBoolean(&value), Exception);
    EXPECT_EQ(value, 0);
}

// Raw bytes in XML are two hexadecimal digits each; anything else is damage, not zeros.
TEST(KxGeFiler, HexadecimalBytesAreReadStrictly)
{
    for (const char* text : {"0G", "00AB", "A", "", " 0", "0x"}) {
        SCOPED_TRACE(text);
        XmlReadStream in(std::string("<member><Bytes0 Value=\"") + text + "\"/></member>");
        const VisitorContext loading = VisitorContext(eVisitLoad).withEntity(nullptr, in.root());
        KxGeFiler reader(&in, loading);
        std::uint8_t byte = 0x55;
        EXPECT_THROW(reader.readBytes(&byte, 1), Exception);
    }
    XmlReadStream in("<member><Bytes0 Value=\"aF\"/></member>");
    const VisitorContext loading = VisitorContext(eVisitLoad).withEntity(nullptr, in.root());
    KxGeFiler reader(&in, loading);
    std::uint8_t byte = 0;
    reader.readBytes(&byte, 1);
    EXPECT_EQ(byte, 0xAF);
}

} // namespace
} // namespace Kx
