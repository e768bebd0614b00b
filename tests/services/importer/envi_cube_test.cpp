// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/EnviCube.h"

#include "services/importer/ImporterFixture.h"

#include <QtEndian>

#include <cmath>
#include <limits>

namespace {

constexpr long width = 5;
constexpr long height = 4;
constexpr int bands = 3;
constexpr int offset = 7;

struct Layout
{
    const char* interleave;
    int dataType;
    bool bigEndian;
};

void PrintTo(const Layout& layout, std::ostream* out)
{
    *out << layout.interleave << ", type " << layout.dataType << (layout.bigEndian ? ", big" : ", little") << " endian";
}

template <class T>
void appendAs(QByteArray& bytes, double value, bool bigEndian)
{
    char raw[sizeof(T)];
    if (bigEndian) {
        qToBigEndian(static_cast<T>(value), raw);
    } else {
        qToLittleEndian(static_cast<T>(value), raw);
    }
    bytes.append(raw, sizeof(T));
}

void append(QByteArray& bytes, double value, int dataType, bool bigEndian)
{
    switch (dataType) {
    case 1:
        return appendAs<quint8>(bytes, value, bigEndian);
    case 2:
        return appendAs<qint16>(bytes, value, bigEndian);
    case 3:
        return appendAs<qint32>(bytes, value, bigEndian);
    case 4:
        return appendAs<float>(bytes, value, bigEndian);
    case 5:
        return appendAs<double>(bytes, value, bigEndian);
    case 12:
        return appendAs<quint16>(bytes, value, bigEndian);
    case 13:
        return appendAs<quint32>(bytes, value, bigEndian);
    case 14:
        return appendAs<qint64>(bytes, value, bigEndian);
    default:
        return appendAs<quint64>(bytes, value, bigEndian);
    }
}

bool isSigned(int dataType)
{
    return dataType == 2 || dataType == 3 || dataType == 4 || dataType == 5 || dataType == 14;
}

// Different for every pixel, and using every byte of the type.
double pixel(long x, long y, int band, int dataType)
{
    const double n = static_cast<double>((band * height + y) * width + x);
    const double sign = isSigned(dataType) && (x + y) % 2 == 1 ? -1.0 : 1.0;
    switch (dataType) {
    case 1:
        return n * 4 + 3;
    case 2:
        return sign * (n * 500 + 3);
    case 12:
        return n * 1000 + 60;
    case 13:
        return n * 70000000 + 5;
    case 3:
        return sign * (n * 30000000 + 5);
    case 4:
    case 5:
        return sign * (n + 0.625);
    default:
        return sign * (n * 1e15 + 257);
    }
}

QByteArray cubeBytes(const Layout& layout)
{
    QByteArray bytes(offset, '#');
    const QByteArray order(layout.interleave);
    const auto put = [&](long x, long y, int b) {
        append(bytes, pixel(x, y, b, layout.dataType), layout.dataType, layout.bigEndian);
    };
    if (order == "bsq") {
        for (int b = 0; b < bands; ++b) {
            for (long y = 0; y < height; ++y) {
                for (long x = 0; x < width; ++x) {
                    put(x, y, b);
                }
            }
        }
    } else if (order == "bil") {
        for (long y = 0; y < height; ++y) {
            for (int b = 0; b < bands; ++b) {
                for (long x = 0; x < width; ++x) {
                    put(x, y, b);
                }
            }
        }
    } else {
        for (long y = 0; y < height; ++y) {
            for (long x = 0; x < width; ++x) {
                for (int b = 0; b < bands; ++b) {
                    put(x, y, b);
                }
            }
        }
    }
    return bytes;
}

QByteArray headerText(const Layout& layout)
{
    return QString("ENVI\nsamples = %1\nlines = %2\nbands = %3\nheader offset = %4\ndata type = %5\ninterleave = %6\n"
                   "byte order = %7\n")
        .arg(width)
        .arg(height)
        .arg(bands)
        .arg(offset)
        .arg(layout.dataType)
        .arg(layout.interleave)
        .arg(layout.bigEndian ? 1 : 0)
        .toLatin1();
}

const Layout plain{"bsq", 12, false};

class EnviCubeTest : public ImporterFixture
{
protected:
    QString refusal(const QString& file)
    {
        EnviCube cube;
        QString error;
        EXPECT_FALSE(cube.open(file, &error));
        return error;
    }
};

class EnviCubeLayoutTest : public EnviCubeTest, public ::testing::WithParamInterface<Layout>
{
};

std::vector<Layout> allLayouts()
{
    std::vector<Layout> layouts;
    for (const char* interleave : {"bsq", "bil", "bip"}) {
        for (const int type : {1, 2, 3, 4, 5, 12, 13, 14, 15}) {
            layouts.push_back({interleave, type, false});
            layouts.push_back({interleave, type, true});
        }
    }
    return layouts;
}

} // namespace

TEST_P(EnviCubeLayoutTest, EveryBandComesBack)
{
    const Layout layout = GetParam();
    write("cube.dat", cubeBytes(layout));
    EnviCube cube;
    QString error;
    ASSERT_TRUE(cube.open(write("cube.hdr", headerText(layout)), &error)) << qPrintable(error);
    EXPECT_EQ(cube.dataPath(), path("cube.dat"));
    CILImage image;
    for (const int b : {2, 0, 1}) {
        ASSERT_TRUE(cube.readBand(b, image, &error)) << qPrintable(error);
        ASSERT_EQ(image.m_lWidth, width);
        ASSERT_EQ(image.m_lHeight, height);
        EXPECT_EQ(image.dataType(), cube.header().imageType());
        for (long y = 0; y < height; ++y) {
            for (long x = 0; x < width; ++x) {
                ASSERT_EQ(image.value(static_cast<std::size_t>(y * width + x)), pixel(x, y, b, layout.dataType))
                    << "band " << b << " at " << x << ", " << y;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, EnviCubeLayoutTest, ::testing::ValuesIn(allLayouts()));

TEST_F(EnviCubeTest, FindsTheHeaderOfADataFile)
{
    EnviCube cube;
    QString error;
    const QString data = write("cube.dat", cubeBytes(plain));
    EXPECT_FALSE(EnviCube::isEnvi(data));
    EXPECT_EQ(refusal(data), data + ": no ENVI header (.hdr) lies beside the file");
    for (const char* name : {"cube.hdr", "cube.dat.hdr", "cube.HDR", "cube.dat.HDR"}) {
        write(name, headerText(plain));
        EXPECT_TRUE(EnviCube::isEnvi(data)) << name;
        EXPECT_TRUE(cube.open(data, &error)) << name;
        EXPECT_EQ(cube.dataPath(), data);
        QFile::remove(path(name));
    }
}

TEST_F(EnviCubeTest, FindsTheDataFileOfAHeader)
{
    EnviCube cube;
    QString error;
    const QString header = write("cube.hdr", headerText(plain));
    EXPECT_EQ(refusal(header), header + ": no data file of that name lies beside the header");
    write("cube.img", cubeBytes(plain));
    ASSERT_TRUE(cube.open(header, &error)) << qPrintable(error);
    EXPECT_EQ(cube.dataPath(), path("cube.img"));
    write("cube.raw", cubeBytes(plain));
    EXPECT_EQ(refusal(header), header + ": several files could hold the data: cube.img, cube.raw; give the one meant");
    EXPECT_TRUE(cube.open(path("cube.raw"), &error));
    write("cube", cubeBytes(plain));
    ASSERT_TRUE(cube.open(header, &error)) << qPrintable(error);
    EXPECT_EQ(cube.dataPath(), path("cube"));
    write("cube.dat.hdr", headerText(plain));
    write("cube.dat", cubeBytes(plain));
    ASSERT_TRUE(cube.open(path("cube.dat.hdr"), &error)) << qPrintable(error);
    EXPECT_EQ(cube.dataPath(), path("cube.dat"));
}

TEST_F(EnviCubeTest, FollowsTheNameInTheHeader)
{
    write("other.bin", cubeBytes(plain));
    write("cube.img", "short");
    EnviCube cube;
    QString error;
    ASSERT_TRUE(cube.open(write("cube.hdr", headerText(plain) + "data file = other.bin\n"), &error));
    EXPECT_EQ(cube.dataPath(), path("other.bin"));
    EXPECT_TRUE(
        refusal(write("lost.hdr", headerText(plain) + "data file = none.bin\n")).startsWith(path("none.bin") + ": "));
}

TEST_F(EnviCubeTest, LeavesItsFolderOnlyWhenFollowed)
{
    const QString data = write("else/other.bin", cubeBytes(plain));
    for (const QString& name : {QStringLiteral("../else/other.bin"), data}) {
        const QString header = write("cubes/cube.hdr", headerText(plain) + "data file = " + name.toUtf8() + '\n');
        EXPECT_EQ(refusal(header), header + ": the data file " + name + " lies outside " + path("cubes") +
                                       "; --follow reads it all the same");
        EnviCube cube;
        QString error;
        EXPECT_TRUE(cube.open(header, &error, true)) << qPrintable(error);
    }
}

TEST_F(EnviCubeTest, RefusesDataThatAreShorterThanTheHeaderSays)
{
    const QByteArray bytes = cubeBytes(plain);
    const QString header = write("cube.hdr", headerText(plain));
    for (int tenth = 0; tenth < 10; ++tenth) {
        const int n = bytes.size() * tenth / 10;
        write("cube.dat", bytes.left(n));
        EXPECT_EQ(refusal(header), QString("%1: the file has %2 bytes where its header asks for %3")
                                       .arg(path("cube.dat"))
                                       .arg(n)
                                       .arg(bytes.size()));
    }
    write("cube.dat", bytes + "more");
    EnviCube cube;
    QString error;
    EXPECT_TRUE(cube.open(header, &error)) << qPrintable(error);
}

TEST_F(EnviCubeTest, AHugeHeaderMeetsASmallFile)
{
    write("cube.dat", cubeBytes(plain));
    const QString header = write(
        "cube.hdr", "ENVI\nsamples = 16777216\nlines = 16777216\nbands = 1000\ndata type = 5\ninterleave = bip\n");
    EXPECT_TRUE(refusal(header).contains("bytes where its header asks for 2251799813685248000"));
}

TEST_F(EnviCubeTest, TellsFileAndLineOfABrokenHeader)
{
    write("cube.dat", cubeBytes(plain));
    EXPECT_EQ(refusal(write("cube.hdr", "ENVI\nsamples = x\n")),
              path("cube.hdr") + ": line 2: \"samples\" is \"x\", not a whole number from 1 to 16777216");
    QByteArray garbage;
    for (int i = 0; i < 2000; ++i) {
        garbage.append(static_cast<char>((i * 131) % 256));
    }
    EXPECT_EQ(refusal(write("cube.hdr", garbage)), path("cube.hdr") + ": line 1: the first line is not \"ENVI\"");
    EXPECT_EQ(refusal(write("cube.hdr", QByteArray(17 * 1024 * 1024, ' '))),
              path("cube.hdr") + ": the file is too large for a header");
    EXPECT_TRUE(refusal(path("none.hdr")).startsWith(path("none.hdr") + ": "));
}

TEST_F(EnviCubeTest, RefusesABandThatIsNotThere)
{
    write("cube.dat", cubeBytes(plain));
    EnviCube cube;
    QString error;
    ASSERT_TRUE(cube.open(write("cube.hdr", headerText(plain)), &error));
    CILImage image;
    EXPECT_FALSE(cube.readBand(3, image, &error));
    EXPECT_EQ(error, path("cube.dat") + ": there is no band 4 (the cube has 3)");
    EXPECT_FALSE(cube.readBand(-1, image, &error));
    EXPECT_TRUE(image.isEmpty());
}

TEST_F(EnviCubeTest, TellsWhenTheFileShrinksAfterOpening)
{
    write("cube.dat", cubeBytes(plain));
    EnviCube cube;
    QString error;
    ASSERT_TRUE(cube.open(write("cube.hdr", headerText(plain)), &error));
    write("cube.dat", cubeBytes(plain).left(60));
    CILImage image;
    EXPECT_FALSE(cube.readBand(2, image, &error));
    EXPECT_EQ(error, path("cube.dat") + ": the data end in band 3");
    EXPECT_TRUE(image.isEmpty());
}
