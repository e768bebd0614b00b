// SPDX-License-Identifier: GPL-3.0-or-later
// Readers of results documents, both generations: whatever the text, the engine of a small sequence takes it or refuses
// it, and can write a document afterwards that can be read.
#include "engine/CORVSpumKyvo.h"

#include "engine/TestSequence.h"

#include "platform/orvutils/LogSinks.h"
#include "require.h"
#include "storage/documentText.h"

#include <QApplication>
#include <QDomDocument>

#include <cstddef>
#include <cstdint>

namespace {

// Three images of 4 x 4 pixels, of an isotope, made once.
TestSequence& sequence()
{
    static auto* pSequence = [] {
        auto* pNew = new TestSequence("fuzz");
        for (int j = 0; j < 3; ++j) {
            TestImage image;
            image.excitation = "480nm";
            image.emission = QString("%1nm").arg(500 + 20 * j);
            image.isotope = "F-18";
            image.acquisitionTime = QString("10:0%1:00").arg(j);
            image.value = [j](int i) { return static_cast<float>((i * (j + 2)) % 7 + 1); };
            pNew->add(image);
        }
        return pNew;
    }();
    return *pSequence;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* pCount, char*** pArguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int nCount = 1;
    static_cast<void>(pCount);
    new QApplication(nCount, *pArguments);
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CORVSpumKyvo engine(sequence().id());
    require(engine.buildDatasetInfo());
    const QString strText = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QDomDocument document;
    QString strReason;
    documentText::parse(strText, &document, &strReason);
    // Each reader begins where the other one stopped.
    engine.readResultV2(document.documentElement());
    engine.readResultV1(document.documentElement());
    // The whole way to the pictures takes a hundred times as long.
    if (size % 16 == 0) {
        engine.loadResult(strText);
    }
    require(document.setContent(engine.resultToXml()));
    return 0;
}
