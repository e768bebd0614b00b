// SPDX-License-Identifier: GPL-3.0-or-later
#include "WorkArea.h"

#include "support/CapturedOutput.h"

#include "host/CILImage.h"
#include "host/CORVChildWindow.h"
#include "host/CORVDataset.h"
#include "host/CORVMdiSubWindow.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/SectionIn.h"
#include "platform/orvutils/ProcessControl.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTest>
#include <QTime>

#include <algorithm>
#include <cmath>

namespace workarea {

namespace {

// Discs of one component each over a background of the first.
double discValue(int nComponent, int nPixel)
{
    const double x = nPixel % side;
    const double y = nPixel / side; // NOLINT(bugprone-integer-division): a row
    const double centre[3][2] = {{4.0, 4.0}, {11.0, 5.0}, {7.0, 11.0}};
    return 100.0 * std::max(0.0, 1.0 - std::hypot(x - centre[nComponent][0], y - centre[nComponent][1]) / 6.0);
}

// A bright disc in the middle, as an animal in its photograph.
CILImage photograph()
{
    return squareImage(2 * side, 1, [](int i) {
        const double x = i % (2 * side) - side;
        const double y = i / (2 * side) - side; // NOLINT(bugprone-integer-division): a row
        return std::hypot(x, y) < 0.8 * side ? 200.0F + static_cast<float>(i % 7) : 10.0F + static_cast<float>(i % 5);
    });
}

// Gives the sequence a folder, by way of a dataset without images.
void settle(CORVSequenceDataset& sequence, const Plan& plan)
{
    const QDir home(plan.folder);
    QFile file(home.filePath("click/ClickInfo.txt"));
    ASSERT_TRUE(home.mkpath("click") && file.open(QIODevice::WriteOnly));
    file.write("[ClickNumber]\nClickNumber: SETTLED-001\n");
    file.close();
    ASSERT_EQ(sequence.open(plan.folder), ESTATUS_SUCCESS);
    sequence.setSequenceID(plan.id);
}

float mixture(int nImage, int nImages, double dGain, int nPixel)
{
    const auto spectra = bellSpectra(3, std::max(nImages, 3));
    double total = 1.0;
    for (int k = 0; k < 3; ++k) {
        total += spectra[static_cast<std::size_t>(k)][static_cast<std::size_t>(nImage)] * discValue(k, nPixel);
    }
    return static_cast<float>(dGain * total);
}

} // namespace

Plan otherPlan()
{
    Plan plan;
    plan.id = "seq-B";
    plan.emissions = QStringList{"500", "520", "540", "560"};
    return plan;
}

OpenedInWindow::OpenedInWindow(const Plan& plan, QMdiArea& area) : m_sequence(plan.id)
{
    if (!plan.folder.isEmpty()) {
        settle(*m_sequence.operator->(), plan);
    }
    m_sequence->isFluorescence = plan.fluorescence;
    m_sequence->isTransillumination = plan.scan;
    m_sequence->setKyvoSequence(plan.temporal);
    m_sequence->setSequenceName("name of " + plan.id);
    if (plan.imported) {
        sectionIn(m_sequence->sequenceInfo(), SequenceKeys::kSequence)
            .setValue(QString(SequenceKeys::kPhotographOrigin), QString("mean of the images"));
    }
    QList<TestImage> images;
    const auto addImage = [&](TestImage image, int nImage, int nImages, double dGain) {
        image.side = side;
        image.binning = 2;
        image.photograph = false;
        image.probe = plan.probe;
        image.subjectType = plan.subject;
        image.isotope = plan.isotope;
        image.calibratedUnit = plan.counts ? DISPLAYUNIT_COUNTS : image.calibratedUnit;
        image.value = [=](int i) { return plan.light ? plan.light(nImage, i) : mixture(nImage, nImages, dGain, i); };
        images.append(image);
    };
    if (plan.temporal) {
        for (int t = 0; t < plan.times.size(); ++t) {
            TestImage image;
            image.kyvoTime = plan.times.at(t);
            image.kyvoInterval = "1";
            addImage(image, t, plan.times.size(), 1.0);
        }
    } else {
        for (int s = 0; s < (plan.scan ? 2 : 1); ++s) {
            for (const QString& excitation : plan.excitations) {
                for (int e = 0; e < plan.emissions.size(); ++e) {
                    TestImage image;
                    image.excitation = excitation + "nm";
                    image.emission = plan.emissions.at(e) + "nm";
                    image.spotX = plan.scan ? QString::number(s) : QString();
                    image.spotY = plan.scan ? QString("0") : QString();
                    addImage(image, e, plan.emissions.size(), 1.0 + 0.5 * s);
                }
            }
        }
    }
    for (const TestImage& image : qAsConst(images)) {
        CORVDataset* pDataset = m_sequence.add(image);
        if (plan.photograph) {
            pDataset->setCoreImage(IMAGETYPE_PHOTOGRAPH, photograph());
        }
    }
    m_pWindow = new CORVSequenceWindow(m_sequence.operator->());
    m_pWindow->addTabWidget(new QLabel("images", m_pWindow), nullptr, nullptr, QIcon(), "Sequence View", -1, true);
    auto* pFrame = new CORVMdiSubWindow;
    pFrame->setWidget(m_pWindow);
    area.addSubWindow(pFrame);
    pFrame->showMaximized();
}

void setBandsOf(OpenedInWindow& opened, const char* pFilter)
{
    for (CORVDataset* pDataset : opened.sequence().getDatasets()) {
        if (CPLSection* pSection = pDataset->clickInfo[QString("luminescent image")]) {
            pSection->setValue(QString("Emission Filter"), QString(pFilter));
        }
    }
}

OpenedInWindow::~OpenedInWindow()
{
    if (m_pWindow) {
        QWidget* pFrame = m_pWindow->parentWidget();
        delete m_pWindow.data();
        delete pFrame;
    }
}

QStringList OpenedInWindow::tabs() const
{
    QStringList present;
    for (const char* pTitle : {tabNames::wizard, tabNames::console, tabNames::composite}) {
        if (m_pWindow->isTabPresent(pTitle)) {
            present << pTitle;
        }
    }
    return present;
}

void waitForNextSecond()
{
    const int nSecond = QTime::currentTime().second();
    ASSERT_TRUE(QTest::qWaitFor([nSecond] { return QTime::currentTime().second() != nSecond; }));
}

WorkAreaTest::WorkAreaTest() : m_pArea(new QMdiArea)
{
    orv::setMessageResponder(std::make_unique<Responder>(m_answers));
    m_main.setCentralWidget(m_pArea);
    m_main.resize(1100, 800);
    CORVChildWindow::setMainWindow(&m_main);
    m_palette = std::make_unique<CORVSpumKyvoPalette>();
}

WorkAreaTest::~WorkAreaTest()
{
    m_answers.whileOpen = nullptr;
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    for (const auto& opened : m_opened) {
        if (opened) {
            m_palette->onCloseSequenceDataset(&opened->sequence());
        }
    }
    m_palette.reset();
    m_opened.clear();
    CORVChildWindow::setMainWindow(nullptr);
    orv::setMessageResponder(nullptr);
    CORVMessageBox::setCancelClicked(false);
    CORVUtilityFns::setSpumBatchStatus(false);
}

OpenedInWindow& WorkAreaTest::open(const Plan& plan)
{
    m_opened.push_back(std::make_unique<OpenedInWindow>(plan, *m_pArea));
    m_palette->onSequenceChanged(&m_opened.back()->sequence());
    return *m_opened.back();
}

void WorkAreaTest::close(OpenedInWindow& opened)
{
    m_palette->onCloseSequenceDataset(&opened.sequence());
    for (auto& candidate : m_opened) {
        if (candidate.get() == &opened) {
            candidate.reset();
            break;
        }
    }
}

void WorkAreaTest::choose(const char* pMethod)
{
    const int nIndex = m_palette->m_pUnmixingMethodsCMB->findText(pMethod);
    ASSERT_GE(nIndex, 0) << pMethod;
    m_palette->m_pUnmixingMethodsCMB->setCurrentIndex(nIndex);
}

QCheckBox* WorkAreaTest::box(int nRow, int nColumn) const
{
    return qobject_cast<QCheckBox*>(m_palette->m_pWaveLengthTable->cellWidget(nRow, nColumn));
}

int WorkAreaTest::ticked() const
{
    int nTicked = 0;
    const QTableWidget& table = *m_palette->m_pWaveLengthTable;
    for (int r = 0; r < table.rowCount(); ++r) {
        for (int c = 0; c < table.columnCount(); ++c) {
            nTicked += box(r, c) != nullptr && box(r, c)->isChecked() ? 1 : 0;
        }
    }
    return nTicked;
}

QStringList WorkAreaTest::rowTexts() const
{
    QStringList texts;
    for (int r = 0; r < m_palette->m_pWaveLengthTable->rowCount(); ++r) {
        texts << m_palette->m_pWaveLengthTable->verticalHeaderItem(r)->text();
    }
    return texts;
}

QStringList WorkAreaTest::resultItems() const
{
    QStringList items;
    for (int i = 0; i < m_palette->m_pSPUnResultsLV->topLevelItemCount(); ++i) {
        items << m_palette->m_pSPUnResultsLV->topLevelItem(i)->text(0);
    }
    return items;
}

std::string WorkAreaTest::complaints() const
{
    QString strText;
    for (const orv::LogRecord& line : m_log.lines()) {
        strText += line.m_nLevel == 2 || line.m_nLevel == 3 ? line.m_strMessage + "\n" : QString();
    }
    return strText.toStdString();
}

void WorkAreaTest::start(const char* pMethod)
{
    choose(pMethod);
    m_palette->onClickUnmixSpectra();
}

void WorkAreaTest::run()
{
    const testsupport::CapturedOutput trace;
    finishWizard(1);
}

void WorkAreaTest::unmixAutomatically()
{
    start("Automatic");
    ASSERT_NE(engine().m_pWizard, nullptr);
    ASSERT_TRUE(wizard().m_bMaskValid);
    run();
}

std::vector<double> WorkAreaTest::concentrations()
{
    const XTNT::Matrix<double>& maps = engine().m_concentrations;
    std::vector<double> values;
    for (long long k = 0; k < maps.num_rows(); ++k) {
        for (long long i = 0; i < maps.num_cols(); ++i) {
            values.push_back(maps[k][i]);
        }
    }
    return values;
}

int WorkAreaTest::processes()
{
    return orv::processState().m_nRunning;
}

} // namespace workarea
