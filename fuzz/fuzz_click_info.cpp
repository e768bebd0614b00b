// SPDX-License-Identifier: GPL-3.0-or-later
// Text files of sections: whatever the bytes, they are refused with a reason that names the file, or what was read
// survives being written and read again.
#include "host/CPLClickInfo.h"
#include "require.h"

#include <cstddef>
#include <cstdint>

namespace {

QString keyOf(const CPLSection& section)
{
    QString key;
    section.getSectionKey(&key);
    return key;
}

QString nameOf(const CPLSection& section)
{
    QString name;
    section.getSectionName(&name, false);
    return name;
}

void requireEqual(const CPLSection& left, const CPLSection& right)
{
    QStringList leftTexts;
    QStringList rightTexts;
    left.getKeyList(&leftTexts);
    right.getKeyList(&rightTexts);
    require(leftTexts == rightTexts);
    left.getValueList(&leftTexts);
    right.getValueList(&rightTexts);
    require(leftTexts == rightTexts && keyOf(left) == keyOf(right) && nameOf(left) == nameOf(right));
}

// Every entry as a number: finite or refused with the output untouched.
void readNumbers(const CPLSection& section)
{
    QStringList keys;
    section.getKeyList(&keys);
    for (const auto& key : keys) {
        float single = -1.0F;
        int whole = -1;
        require(section.getValue(key, &single) == 0 || single == -1.0F);
        require(section.getValue(key, &whole) == 0 || whole == -1);
        require(single - single == 0.0F);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(pData), static_cast<int>(size));
    CPLClickInfo first;
    QStringList warnings;
    int count = 0;
    if (first.parse(text, QStringLiteral("click.txt"), &warnings) != 0) {
        first.getSectionCount(&count);
        require(count == 0 && !warnings.isEmpty() && warnings.last().startsWith(QLatin1String("click.txt:")));
        return 0;
    }
    CPLClickInfo second;
    QStringList none;
    require(second.parse(first.toText(), QStringLiteral("again.txt"), &none) == 0 && none.isEmpty());
    int again = 0;
    first.getSectionCount(&count);
    second.getSectionCount(&again);
    require(count == again);
    for (int i = 0; i < count; ++i) {
        requireEqual(*first.section(i), *second.section(i));
        if (size < 4096) { // the look-ups are quadratic
            readNumbers(*first.section(i));
        }
    }
    return 0;
}
