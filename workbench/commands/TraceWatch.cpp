// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/TraceWatch.h"

#include <cstdlib>

namespace {

// As the curve resolution writes them, which is part of its contract.
const std::string iterationLabel = "Iteration: ";
const std::string lackOfFitLabel = "Fitting error (lack of fit) in % (PCA) =";
// Of a line, beyond both labels and a number; matrices have long ones.
constexpr std::size_t longestLine = 96;

bool begins(const std::string& strLine, const std::string& strLabel)
{
    return strLine.compare(0, strLabel.size(), strLabel) == 0;
}

} // namespace

QString TraceWatch::text() const
{
    const int iteration = m_nJudged;
    if (iteration < 1) {
        return QString();
    }
    return QStringLiteral("iteration %1, lack of fit %2 %").arg(iteration).arg(m_dLackOfFit.load(), 0, 'g', 3);
}

void TraceWatch::clear()
{
    m_nJudged = 0;
}

TraceWatch::int_type TraceWatch::overflow(int_type character)
{
    if (traits_type::eq_int_type(character, traits_type::eof())) {
        return traits_type::not_eof(character);
    }
    const char letter = traits_type::to_char_type(character);
    read(&letter, 1);
    return m_pNext == nullptr ? character : m_pNext->sputc(letter);
}

std::streamsize TraceWatch::xsputn(const char* pText, std::streamsize nCount)
{
    read(pText, nCount);
    return m_pNext == nullptr ? nCount : m_pNext->sputn(pText, nCount);
}

int TraceWatch::sync()
{
    return m_pNext == nullptr ? 0 : m_pNext->pubsync();
}

void TraceWatch::read(const char* pText, std::streamsize nCount)
{
    for (std::streamsize i = 0; i < nCount; ++i) {
        if (pText[i] == '\n') {
            readLine();
            m_line.clear();
        } else if (m_line.size() < longestLine) {
            m_line.push_back(pText[i]);
        }
    }
}

void TraceWatch::readLine()
{
    if (begins(m_line, iterationLabel)) {
        m_nIteration = std::atoi(m_line.c_str() + iterationLabel.size());
    } else if (begins(m_line, lackOfFitLabel)) {
        m_dLackOfFit = std::strtod(m_line.c_str() + lackOfFitLabel.size(), nullptr);
        m_nJudged = m_nIteration.load();
    }
}
