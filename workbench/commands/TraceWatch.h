// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <atomic>
#include <streambuf>
#include <string>

// Takes the trace of the algorithms, hands it on to a file's buffer or to nobody, and reads from it how far a curve
// resolution has come. One thread writes, any may ask.
class TraceWatch : public std::streambuf
{
public:
    // `pNext` may be null and must live longer.
    explicit TraceWatch(std::streambuf* pNext) : m_pNext(pNext) {}

    // "iteration 7, lack of fit 1.25 %"; empty before the first iteration has ended.
    QString text() const;
    // Forgets what was read.
    void clear();

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* pText, std::streamsize nCount) override;
    int sync() override;

private:
    void read(const char* pText, std::streamsize nCount);
    void readLine();

    std::streambuf* m_pNext;
    std::string m_line; // its beginning, as long as the labels
    std::atomic<int> m_nIteration{0};
    std::atomic<int> m_nJudged{0}; // the iteration that the lack of fit is of
    std::atomic<double> m_dLackOfFit{0.0};
};
