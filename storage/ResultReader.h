// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDomElement>
#include <QString>

#include <functional>
#include <vector>

class CORVSpumKyvo;

// Reads the root of a results document into an engine, child by child in document order, and knows the elements that
// both generations of the file have. What was read before a failure stays in the engine.
class ResultReader
{
public:
    ResultReader(const ResultReader&) = delete;
    ResultReader& operator=(const ResultReader&) = delete;
    virtual ~ResultReader() = default;

    // Takes the spectra, ratios and regions of before from the engine, then walks the children. An element is handed to
    // the first entry of its name, compared without regard to case; others are skipped. False at the first that fails,
    // which the log then tells.
    bool read(const QDomElement& root);

protected:
    // Borrows the engine.
    explicit ResultReader(CORVSpumKyvo& engine) : m_engine(engine) {}

    void addEntry(const QString& strName, const std::function<bool(const QDomElement&)>& readElement);
    // Tells the reason in the log; always false.
    static bool fail(const QString& strReason);

    bool readSequence(const QDomElement& element);
    // The pairs in the two attributes named become the selection when all of them can stay.
    bool readSelection(const QDomElement& element, const QString& strFirst, const QString& strSecond);
    bool readPixels(const QDomElement& element, const QString& strCountName);
    bool readProperties(const QDomElement& element);
    bool readRegions(const QDomElement& element);
    bool readDisplay(const QDomElement& element);

    CORVSpumKyvo& m_engine;
    // Place of the present child, from 0, and how many there are.
    int m_nChild = 0;
    int m_nChildren = 0;

private:
    struct Entry
    {
        QString name;
        std::function<bool(const QDomElement&)> readElement;
    };

    bool readChild(const QDomElement& element) const;

    std::vector<Entry> m_entries;
};
