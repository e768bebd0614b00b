// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QLocale>

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace testsupport {

// Gives the C library a locale that the build made for tests (cmake/TestLocales.cmake), and Qt the same language, as
// long as it lives. Fails the test where there is no such locale: a test that could not run has not passed.
class ForeignLocale
{
public:
    explicit ForeignLocale(const char* pName = "de_DE.UTF-8", int nCategory = LC_ALL)
        : m_nCategory(nCategory), m_earlier(std::setlocale(nCategory, nullptr)),
          m_bPlaceGiven(qEnvironmentVariableIsSet("LOCPATH")), m_earlierPlace(qgetenv("LOCPATH"))
    {
        qputenv("LOCPATH", ORV_BINARY_DIR "/locales");
        EXPECT_NE(std::setlocale(nCategory, pName), nullptr) << pName << " is not among the locales for tests";
        QLocale::setDefault(QLocale(QString::fromLatin1(pName)));
    }
    ~ForeignLocale()
    {
        QLocale::setDefault(m_earlierQt);
        m_bPlaceGiven ? qputenv("LOCPATH", m_earlierPlace) : qunsetenv("LOCPATH");
        std::setlocale(m_nCategory, m_earlier.c_str());
    }
    ForeignLocale(const ForeignLocale&) = delete;
    ForeignLocale& operator=(const ForeignLocale&) = delete;

private:
    int m_nCategory;
    std::string m_earlier;
    bool m_bPlaceGiven;
    QByteArray m_earlierPlace;
    QLocale m_earlierQt;
};

} // namespace testsupport
