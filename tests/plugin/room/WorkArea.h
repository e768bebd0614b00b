// SPDX-License-Identifier: GPL-3.0-or-later
// A host around the palette: a main window with a work area, windows of sequences, and somebody who answers questions.
#pragma once

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "plugin/AnalysisSetup.h"
#include "plugin/CORVSpumKyvoPalette.h"
#include "plugin/tabNames.h"

#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "platform/orvutils/MessageResponder.h"
#include "windows/SpUnmixCompositeWnd.h"
#include "windows/SpUnmixWizardWnd.h"
#include "windows/SpumKyvoConsoleWnd.h"

#include <QCheckBox>
#include <QMainWindow>
#include <QMdiArea>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace workarea {

inline constexpr int side = 16;

// A question as one text: caption and text.
struct Question
{
    QString caption;
    QString text;
    QWidget* parent = nullptr;
    QList<int> offered{}; // answers
};

// Answers every question alike, by yes unless told otherwise, and keeps them.
struct Answers
{
    QList<Question> asked;
    int answer = CORVMessageBox::YesButton;
    QStringList files; // for questions for a file, one after another
    QString proposed;  // by the last of these
    QString filter;
    std::function<void()> whileOpen;

    QStringList texts() const
    {
        QStringList all;
        for (const Question& question : asked) {
            all << question.text;
        }
        return all;
    }
};

class Responder : public orv::MessageResponder
{
public:
    explicit Responder(Answers& answers) : m_answers(answers) {}
    int ask(const orv::MessageRequest& request) override
    {
        const QList<int> offered = request.answers();
        m_answers.asked.append({request.m_strCaption, request.m_strText, request.m_pParent, offered});
        if (m_answers.whileOpen) {
            m_answers.whileOpen();
        }
        return offered.size() == 1 ? offered.first() : m_answers.answer;
    }
    std::optional<orv::FileAnswer> chooseFile(const orv::FileRequest& request) override
    {
        m_answers.asked.append({request.m_strTitle, request.m_filters.join(";;"), request.m_pParent});
        m_answers.proposed = request.m_strFolder;
        if (m_answers.whileOpen) {
            m_answers.whileOpen();
        }
        if (m_answers.files.isEmpty()) {
            return std::nullopt;
        }
        const QString strFilter = m_answers.filter.isEmpty() ? request.m_strSelectedFilter : m_answers.filter;
        return orv::FileAnswer{m_answers.files.takeFirst(), strFilter};
    }

private:
    Answers& m_answers;
};

// What a sequence of the tests holds.
struct Plan
{
    QString id = "seq-A";
    QString folder; // its home, where results are saved; none when empty
    QStringList emissions{"660", "680", "700", "720", "740", "760"};
    QStringList excitations{"640"};
    QString probe = "ICG";
    QString subject = "Phantom-RFM";
    bool fluorescence = true;
    bool temporal = false;
    bool scan = false; // two spots
    QStringList times{"0", "10", "3661", "90000"};
    bool photograph = true;
    bool imported = false; // the photograph was made of the images
    bool counts = false;   // nothing else can be had
    QString isotope;
    // What image and pixel hold, in place of three discs over a background.
    std::function<float(int nImage, int nPixel)> light{};
};

// Of another sequence, of four images.
Plan otherPlan();

class OpenedInWindow;
// Gives every image of the sequence that emission filter.
void setBandsOf(OpenedInWindow& opened, const char* pFilter);

// A sequence in memory with its window in the work area.
class OpenedInWindow
{
public:
    OpenedInWindow(const Plan& plan, QMdiArea& area);
    ~OpenedInWindow();
    OpenedInWindow(const OpenedInWindow&) = delete;
    OpenedInWindow& operator=(const OpenedInWindow&) = delete;

    CORVSequenceDataset& sequence() const { return *m_sequence.operator->(); }
    CORVSequenceWindow& window() const { return *m_pWindow; }
    TestSequence& test() { return m_sequence; }
    QStringList tabs() const;

private:
    TestSequence m_sequence;
    QPointer<CORVSequenceWindow> m_pWindow;
};

// Results of one second share a file.
void waitForNextSecond();

class WorkAreaTest : public ::testing::Test
{
protected:
    WorkAreaTest();
    ~WorkAreaTest() override;

    // Opens a sequence and makes it the current one of the palette.
    OpenedInWindow& open(const Plan& plan = Plan());
    // As the host does: the palette first.
    void close(OpenedInWindow& opened);

    CORVSpumKyvo& engine() { return *m_palette->engine(); }
    SpUnmixWizardWnd& wizard() { return *engine().m_pWizard; }
    SpumKyvoConsoleWnd& console() { return *engine().m_pConsole; }
    void choose(const char* pMethod);
    // Chooses the method and presses Start.
    void start(const char* pMethod);
    // The box of an image; null when there is none.
    QCheckBox* box(int nRow, int nColumn) const;
    int ticked() const;
    QStringList rowTexts() const;
    QStringList resultItems() const;
    // The warnings and errors of the log, a line each.
    std::string complaints() const;
    // As Finish (1) and Cancel (0) do.
    void finishWizard(int nResult) { static_cast<QDialog&>(wizard()).done(nResult); }
    // Finish, to the end of the run.
    void run();
    // By the wizard, with its components as they are, to the end of the run.
    void unmixAutomatically();
    // The maps of the current engine, one after another.
    std::vector<double> concentrations();
    // Long processes that have not ended.
    static int processes();

    LogCapture m_log;
    Answers m_answers;
    QMainWindow m_main;
    QMdiArea* m_pArea = nullptr;
    std::unique_ptr<CORVSpumKyvoPalette> m_palette;
    std::vector<std::unique_ptr<OpenedInWindow>> m_opened;
};

// A sequence "mouse" in the folder of the test, unmixed, and the names of saved results as a user finds them.
class MouseAreaTest : public WorkAreaTest
{
protected:
    void unmixMouse()
    {
        Plan plan;
        plan.folder = m_folder.filePath("mouse");
        open(plan);
        unmixAutomatically();
    }

    void type(const QString& strName) { m_palette->m_pSavedResultsCB->setEditText(strName); }
    QString text() const { return m_palette->m_pSavedResultsCB->currentText(); }
    QStringList list() const
    {
        QStringList names;
        for (int i = 0; i < m_palette->m_pSavedResultsCB->count(); ++i) {
            names << m_palette->m_pSavedResultsCB->itemText(i);
        }
        return names;
    }

    QTemporaryDir m_folder;
};

} // namespace workarea
