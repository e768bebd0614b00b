// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>

ProgramResult ProgramFixture::succeed(const QStringList& arguments, const QStringList& codes) const
{
    const ProgramResult result = spum(arguments);
    EXPECT_EQ(result.status, 0) << qPrintable(arguments.join(' ')) << "\n" << result.err.constData();
    if (codes.isEmpty()) {
        EXPECT_EQ(result.err, QByteArray()) << qPrintable(arguments.join(' '));
        return result;
    }
    QStringList told;
    QByteArray lines;
    for (const auto& value : result.json()["warnings"].toArray()) {
        const QJsonObject warning = value.toObject();
        told.append(warning["code"].toString());
        const QString advice = warning["advice"].toString();
        lines +=
            ("spum: warning: " + warning["text"].toString() + (advice.isEmpty() ? "" : "; ") + advice + '\n').toUtf8();
    }
    EXPECT_EQ(told, codes) << qPrintable(arguments.join(' '));
    EXPECT_EQ(result.err, lines) << qPrintable(arguments.join(' '));
    return result;
}

QString ProgramFixture::refusal(const QStringList& arguments, int nStatus) const
{
    const ProgramResult result = spum(arguments);
    EXPECT_EQ(result.status, nStatus) << qPrintable(arguments.join(' ')) << "\n" << result.err.constData();
    EXPECT_EQ(result.out, QByteArray());
    EXPECT_TRUE(result.err.startsWith("spum: ")) << result.err.constData();
    EXPECT_EQ(result.err.count('\n'), 1) << result.err.constData();
    EXPECT_TRUE(result.err.endsWith('\n'));
    return result.errText().mid(6).trimmed();
}

// The plain sequence is made once and copied from then on.
QByteArray ProgramFixture::lastingContentOf(const QString& strFile) const
{
    if (strFile.endsWith(QStringLiteral("summary.json"))) {
        QJsonObject summary = QJsonDocument::fromJson(contentOf(strFile)).object();
        summary.remove("provenance");
        summary.remove("run");
        return QJsonDocument(summary).toJson();
    }
    QString text = QString::fromUtf8(contentOf(strFile));
    if (strFile.endsWith(QStringLiteral("summary.csv"))) {
        static const QRegularExpression run("^([^,\n]*),[^,\n]*,", QRegularExpression::MultilineOption);
        return text.replace(run, "\\1,").toUtf8();
    }
    if (!strFile.endsWith(QStringLiteral("report.html"))) {
        return contentOf(strFile);
    }
    for (const char* part : {"<pre>[^<]*</pre>", "<footer>[^<]*</footer>"}) {
        text.remove(QRegularExpression(QLatin1String(part)));
    }
    return text.toUtf8();
}

void ProgramFixture::simulate(const QStringList& options) const
{
    static const QTemporaryDir store;
    const QString original = store.filePath("seq");
    const QString target = options.isEmpty() ? original : path("seq");
    if (!options.isEmpty() || !QFileInfo::exists(original)) {
        succeed(QStringList{"simulate", target, "--size", "64", "--bands", "8"} + options);
    }
    if (!options.isEmpty()) {
        return;
    }
    for (const auto& name : filesBelow(original)) {
        const QString copy = path("seq/" + name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(copy).path()));
        ASSERT_TRUE(QFile::copy(original + '/' + name, copy)) << qPrintable(name);
    }
}

SmallSequence ProgramFixture::smallSequence()
{
    SmallSequence sequence;
    const auto a = [](int i) { return static_cast<float>(i); };
    const auto b = [](int i) { return static_cast<float>(2 * (i % 4) + 1); };
    sequence.addBands({a, [=](int i) { return 0.5F * a(i) + 0.25F * b(i); }, b});
    return sequence;
}

QString ProgramFixture::library() const
{
    std::call_once(m_libraryWritten, [this] {
        write("small library.csv", "$,Note,by hand\n$,NumSpec,2\n$,Color,red,blue\n$,Origin,a,b\n$,Select,1,1\n"
                                   "Excitation,Emission,Dye A,Dye B\n"
                                   "640,740,0,1\n640,700,1,0\n640,720,0.5,0.25\n");
    });
    return path("small library.csv");
}
