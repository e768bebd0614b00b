// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/fillCube.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVProcess.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <exception>

namespace {

constexpr int percents = 100;

class NotWanted : public std::exception
{
};

class PatientEvents
{
public:
    PatientEvents(const CORVSpumKyvo& engine, int nPatience, const std::function<void()>& begins,
                  const std::function<bool()>& isWanted)
        : m_nPatience(nPatience), m_begins(begins), m_isWanted(isWanted),
          m_strMessage(
              QCoreApplication::translate("fillCube", "Reading the images of sequence [%1]").arg(engine.m_strSeqId))
    {
        m_since.start();
    }
    ~PatientEvents()
    {
        if (m_bShown) {
            CORVProcess::endLongProcess(LONGPROCESS_GENERAL);
        }
    }
    PatientEvents(const PatientEvents&) = delete;
    PatientEvents& operator=(const PatientEvents&) = delete;

    // Throws NotWanted.
    void step(double dShare)
    {
        if (m_since.elapsed() < m_nPatience) {
            return;
        }
        if (!m_bShown) {
            m_bShown = true;
            CORVProcess::startLongProcess(0, LONGPROCESS_GENERAL, true, QStringLiteral("Aborting..."));
            m_begins();
        }
        CORVProcess::setProcessMessage(m_strMessage, static_cast<int>(dShare * percents), percents, nullptr);
        QCoreApplication::processEvents();
        if (CORVProcess::isProcessAborted() || !m_isWanted()) {
            throw NotWanted();
        }
    }

private:
    const int m_nPatience;
    const std::function<void()>& m_begins;
    const std::function<bool()>& m_isWanted;
    const QString m_strMessage;
    QElapsedTimer m_since;
    bool m_bShown = false;
};

} // namespace

Filling fillCube(CORVSpumKyvo& engine, int nPatience, const std::function<void()>& begins,
                 const std::function<bool()>& isWanted)
{
    try {
        PatientEvents events(engine, nPatience, begins, isWanted);
        if (!engine.buildImageCube([&events](double dShare) { events.step(dShare); })) {
            return Filling::Failed;
        }
    } catch (const NotWanted&) {
        engine.m_cube.clear();
        return Filling::Aborted;
    }
    return engine.createPseudoColorImage() ? Filling::Done : Filling::Failed;
}
