// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/GuardedRun.h"
#include "odd_inputs/OddCase.h"
#include "support/ForkedChild.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

constexpr long peakLimitKiB = 200L * 1024;

const OddCases& allCases()
{
    static const OddCases collected = [] {
        OddCases all;
        for (const auto& cases : {sectionCases(), sequenceCases(), regionCases(), tiffCases(), metadataCases(),
                                  imagesTableCases(), cubeCases(), pictureCases(), referenceTableCases(),
                                  libraryCases(), resultCases(), savedResultCases(), placeCases(), programCases()}) {
            all.insert(all.end(), cases.begin(), cases.end());
        }
        return all;
    }();
    return collected;
}

QRegularExpression patternOf(const OddCase& oddCase, const QString& path)
{
    QString pattern = QRegularExpression::escape(oddCase.says);
    const auto fill = [&pattern](const char* place, const QString& by) {
        pattern.replace(QRegularExpression::escape(QLatin1String(place)), by);
    };
    fill("{path}", QRegularExpression::escape(path));
    fill("{dir}", QRegularExpression::escape(QFileInfo(path).path()));
    fill("{n}", QStringLiteral("[0-9]+"));
    fill("{...}", QStringLiteral(".*"));
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern),
                              QRegularExpression::DotMatchesEverythingOption);
}

// What stands where the case looks: the error or the warnings, or what was read.
QStringList wordsOf(const OddCase& oddCase, const Reading& reading)
{
    return oddCase.outcome == OddCase::Silent ? QStringList{reading.gist} : reading.messages;
}

class OddInputTest : public ::testing::TestWithParam<OddCase>
{
};

TEST_P(OddInputTest, IsToldAndHarmless)
{
    const OddCase& oddCase = GetParam();
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    ASSERT_EQ(::chmod(QFile::encodeName(folder.path()).constData(), 0755), 0);
    const QString path = folder.filePath(oddCase.file);
    oddCase.make(path);
    const GuardedRun run = runGuarded([&](int descriptor) {
        if (oddCase.plainUser && !becomePlainUser()) {
            return 99;
        }
        return oddCase.read(path, descriptor);
    });

    ASSERT_TRUE(run.exited) << "died of signal " << run.signal << " after " << run.processorSeconds << " s";
    EXPECT_LE(run.processorSeconds, ODD_PROCESSOR_SECONDS);
#ifdef ODD_MEMORY_COUNTS
    EXPECT_LE(run.peakKiB, peakLimitKiB);
#endif
    const Reading reading = parseReading(run.output, run.status);
    const QStringList words = wordsOf(oddCase, reading);
    RecordProperty("said", words.join(QStringLiteral(" | ")).left(500).toStdString());
    RecordProperty("kibibytes", static_cast<int>(run.peakKiB));
    RecordProperty("milliseconds", static_cast<int>(1000.0 * run.processorSeconds));
    EXPECT_EQ(reading.accepted, oddCase.outcome != OddCase::Refused);
    EXPECT_EQ(reading.messages.isEmpty(), oddCase.outcome == OddCase::Silent);
    EXPECT_FALSE(words.filter(patternOf(oddCase, path)).isEmpty())
        << "expected: " << qPrintable(oddCase.says) << "\nsaid:     " << qPrintable(reading.gist) << "\n          "
        << qPrintable(reading.messages.mid(0, 8).join(QStringLiteral("\n          ")).left(3000));
    EXPECT_LT(run.output.size(), 100000) << "nobody reads that much";
}

INSTANTIATE_TEST_SUITE_P(Collection, OddInputTest, ::testing::ValuesIn(allCases()),
                         [](const auto& tested) { return tested.param.name.toStdString(); });

TEST(OddInputCollectionTest, HoldsEveryCaseOnce)
{
    QSet<QByteArray> names;
    for (const OddCase& oddCase : allCases()) {
        EXPECT_FALSE(names.contains(oddCase.name)) << oddCase.name.constData();
        EXPECT_FALSE(oddCase.says.isEmpty()) << oddCase.name.constData();
        names.insert(oddCase.name);
    }
    EXPECT_GE(names.size(), 60);
}

} // namespace

void putFile(const QString& path, const QByteArray& bytes)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    ASSERT_EQ(file.write(bytes), bytes.size());
}

OddCases cutAtEachTenth(const QByteArray& name, OddReader read, const QString& file, const QByteArray& whole,
                        const std::vector<QString>& says)
{
    OddCases cases;
    for (std::size_t i = 0; i < says.size(); ++i) {
        const int tenths = static_cast<int>(i) + 1;
        OddCase oddCase{name + "CutAt" + QByteArray::number(10 * tenths) + "Percent",
                        read,
                        file,
                        [whole, tenths](const QString& path) { putFile(path, whole.left(whole.size() * tenths / 10)); },
                        OddCase::Refused,
                        says[i]};
        if (says[i].startsWith(QLatin1String("ok: "))) {
            oddCase.outcome = OddCase::Silent;
            oddCase.says = says[i].mid(4);
        } else if (says[i].startsWith(QLatin1String("warning: "))) {
            oddCase.outcome = OddCase::Warned;
            oddCase.says = says[i].mid(9);
        }
        cases.push_back(oddCase);
    }
    return cases;
}
