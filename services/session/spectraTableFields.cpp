// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/spectraTableFields.h"

#include <QRegularExpression>
#include <QTextCodec>

#include <algorithm>

QString decodedTable(const QByteArray& bytes)
{
    QTextCodec* pMarked = QTextCodec::codecForUtfText(bytes, nullptr);
    QTextCodec* pCodec = pMarked != nullptr ? pMarked : QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state;
    QString text = pCodec->toUnicode(bytes.constData(), bytes.size(), &state);
    if (pMarked == nullptr && (state.invalidChars > 0 || state.remainingChars > 0)) {
        text = QString::fromLatin1(bytes);
    }
    if (text.startsWith(QChar(QChar::ByteOrderMark))) {
        text.remove(0, 1);
    }
    return text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

QChar separatorTold(const QString& strLine)
{
    static const QRegularExpression told(QStringLiteral("^\\s*\"?sep=(.)\"?\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const auto match = told.match(strLine);
    return match.hasMatch() ? match.captured(1).at(0) : QChar();
}

bool areEmpty(const QStringList& fields)
{
    return std::all_of(fields.begin(), fields.end(), [](const QString& field) { return field.isEmpty(); });
}

bool isDecimal(QString text)
{
    bool good = false;
    text.replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&good);
    return good;
}

QString wavelengthUnitIn(const QString& strField)
{
    static const QRegularExpression nm(QStringLiteral("(?<![a-z])nm(?![a-z])|nanomet"));
    static const QRegularExpression um(QString::fromUtf8("(?<![a-z])[u\xC2\xB5\xCE\xBC]m(?![a-z])|micromet|micron"));
    static const QRegularExpression other(
        QString::fromUtf8("cm\\s*\\^?-1|1/cm|cm\xE2\x81\xBB|wavenumber|\xC3\xA5|angstr|(?<![a-z])ev(?![a-z])|"
                          "(?<![a-z])thz"));
    const QString text = strField.toLower();
    if (other.match(text).hasMatch()) {
        return otherUnit;
    }
    return nm.match(text).hasMatch() ? wavelengthsInNm : um.match(text).hasMatch() ? wavelengthsInUm : QString();
}

QString withoutWavelengthUnit(const QString& strField)
{
    static const QRegularExpression unit(QString::fromUtf8("\\s*(nm|[u\xC2\xB5\xCE\xBC]m)\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
    return QString(strField).remove(unit);
}

SpectraTable::Axis tableAxisIn(const QString& strField, bool* pWavelengths)
{
    static const QRegularExpression aside(QString::fromUtf8("\\(.*\\)|\\[.*\\]|[^a-z\xCE\xBB]"));
    static const QRegularExpression unit(QStringLiteral("(nm|um)$"));
    const QString word = strField.toLower().remove(aside).remove(unit);
    const QString bare = QString(word).remove(QLatin1String("wavelengths")).remove(QLatin1String("wavelength"));
    const bool excitation = bare == QLatin1String("excitation") || bare == QLatin1String("ex");
    const bool emission = bare == QLatin1String("emission") || bare == QLatin1String("em");
    *pWavelengths = excitation || emission || bare.isEmpty() || word == QLatin1String("lambda") ||
                    word == QLatin1String("wl") || word == QString::fromUtf8("\xCE\xBB");
    return excitation ? SpectraTable::Axis::Excitation
                      : (emission ? SpectraTable::Axis::Emission : SpectraTable::Axis::Unsaid);
}

bool isTableAxis(const QString& strField, SpectraTable::Axis eAxis)
{
    bool wavelengths = false;
    return tableAxisIn(strField, &wavelengths) == eAxis;
}

QString spectrumNameIn(const QString& strField, bool* pPercent)
{
    static const QRegularExpression inPercent(QStringLiteral("\\s*[\\[(]\\s*%\\s*[\\])]\\s*$|\\s*%\\s*$"));
    QString name = strField;
    *pPercent = inPercent.match(name).hasMatch();
    return name.remove(inPercent).replace(QLatin1Char(','), QLatin1Char(';')).simplified();
}
