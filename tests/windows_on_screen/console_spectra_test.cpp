// SPDX-License-Identifier: GPL-3.0-or-later
// Spectra of the console that are not painted: out of libraries, and computed of others.
#include "windows_on_screen/ConsoleFixture.h"
#include "windows_on_screen/LibraryFixture.h"

#include "host/CORVUtilityFns.h"
#include "platform/orvutils/MessageResponder.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "windows/SpumKyvoCPSWnd.h"

#include <QPushButton>
#include <QTimer>

#include <functional>

namespace {

using Values = std::vector<double>;

// Takes questions down and answers by the first button.
class QuestionList : public orv::MessageResponder
{
public:
    explicit QuestionList(QStringList& texts) : m_texts(texts) {}
    int ask(const orv::MessageRequest& request) override
    {
        m_texts << request.m_strText;
        return request.answers().first();
    }

private:
    QStringList& m_texts;
};

class ConsoleSpectraTest : public ConsoleTest, public LibraryFolder
{
protected:
    ConsoleSpectraTest() : m_before(orv::setMessageResponder(std::make_unique<QuestionList>(m_questions)))
    {
        // The cube's images and one more, in another order.
        write("dyes", "$,Note,n\n$,NumSpec,3\n$,Color,gold,pink,cyan\n$,Origin,lab,lab,lab\n$,Select,1,1,0\n"
                      "Excitation,Emission,A,B,C\n500,660,4,40,1\n500,640,3,30,1\n500,620,2,20,1\n500,600,1,10,1\n"
                      "500,700,9,90,1\n");
        write("others", library::dyes(2, 2, 2));
    }
    ~ConsoleSpectraTest() override { orv::setMessageResponder(std::move(m_before)); }

    // What the user does in the next window of this kind. That it came is a part of the test.
    template <class Window>
    void inWindow(const std::function<void(Window&)>& act)
    {
        ++m_nExpected;
        QTimer::singleShot(0, [this, act] {
            auto* pWindow = qobject_cast<Window*>(QApplication::activeModalWidget());
            ASSERT_NE(pWindow, nullptr);
            ++m_nSeen;
            act(*pWindow);
        });
    }
    static void choose(SpUnmixSpectrumLibraryWnd& window, const char* pName)
    {
        window.m_pSpumLibraryList->setCurrentItem(
            window.m_pSpumLibraryList->findItems(QLatin1String(pName), Qt::MatchExactly).first());
    }
    // The pure spectrum's window with everything taken as it is.
    static void asTheyAre(SpumKyvoCPSWnd& window)
    {
        window.m_pNormalizedA->setChecked(false);
        window.m_pNormalizedB->setChecked(false);
    }
    static void apply(SpumKyvoCPSWnd& window)
    {
        QTest::mouseClick(window.m_pButtonBox->button(QDialogButtonBox::Apply), Qt::LeftButton);
    }
    QStringList names() const
    {
        QStringList list;
        for (const SpectrumPlotParams* pSpectrum : m_pConsole->getSpectra()) {
            list << pSpectrum->settings.name;
        }
        return list;
    }
    bool isTicked(int nRow) const { return row(nRow).m_pSelectBox->isChecked(); }
    SpumKyvoConsoleWnd& console() const { return *m_pConsole; }

    QStringList m_questions;
    std::unique_ptr<orv::MessageResponder> m_before;
    int m_nExpected = 0;
    int m_nSeen = 0;
};

TEST_F(ConsoleSpectraTest, LoadedSpectraReplaceTheRows)
{
    openCube();
    addPainted(true);
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) {
        EXPECT_EQ(window.windowTitle(), "Load Spectrum Library");
        EXPECT_EQ(window.m_pNextBtn->text(), "Load");
        EXPECT_FALSE(window.m_pAppendChk->isHidden());
        EXPECT_EQ(window.m_eAxis, 0);
        EXPECT_EQ(window.m_referencePairs, cubeKeys());
        choose(window, "others");
        EXPECT_FALSE(window.m_pNextBtn->isEnabled());
        choose(window, "dyes");
        window.m_pNextBtn->click();
    });
    click(console().m_pLoadDatabaseTB);
    EXPECT_EQ(m_nSeen, m_nExpected);
    EXPECT_EQ(names(), (QStringList{"A", "B"}));
    EXPECT_EQ(values(1), (Values{10, 20, 30, 40})); // as the images of the cube stand
    EXPECT_EQ(console().m_spectra[0]->origin, "lab");
    EXPECT_EQ(row(0).m_pColorCombo->currentText(), "gold");
    EXPECT_TRUE(isTicked(0) && isTicked(1));
    EXPECT_TRUE(row(0).m_pNameEdit->isEnabled());
    EXPECT_TRUE(console().m_bSpectraModified);
    EXPECT_TRUE(console().m_pUnmixBtn->isEnabled());
}

TEST_F(ConsoleSpectraTest, LoadedSpectraAreAppendedOnRequest)
{
    openCube();
    addPainted(true);
    const Values painted = values(0);
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) {
        choose(window, "dyes");
        window.m_pAppendChk->click();
        window.m_pNextBtn->click();
    });
    click(console().m_pLoadDatabaseTB);
    EXPECT_EQ(names(), (QStringList{"UMX1", "A", "B"}));
    EXPECT_EQ(values(0), painted);
    EXPECT_EQ(row(2).m_pIndexLabel->text(), "3");
}

TEST_F(ConsoleSpectraTest, InTheDrawingStepLoadedSpectraAreNoBackground)
{
    openCube();
    console().setBackgroundMode(true);
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) {
        choose(window, "dyes");
        window.m_pNextBtn->click();
    });
    click(console().m_pLoadDatabaseTB);
    ASSERT_EQ(rows(), 2);
    EXPECT_FALSE(isTicked(0) || isTicked(1));
    EXPECT_TRUE(console().m_pUnmixBtn->isEnabled());
}

TEST_F(ConsoleSpectraTest, ALoadThatIsCancelledChangesNothing)
{
    openCube();
    addPainted(true);
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) {
        choose(window, "dyes");
        window.m_pCloseBtn->click();
    });
    click(console().m_pLoadDatabaseTB);
    EXPECT_EQ(names(), QStringList{"UMX1"});
}

TEST_F(ConsoleSpectraTest, MoreSpectraThanTheListHoldsAreRefused)
{
    write("many", library::dyes(256, 8, 256));
    openCube();
    addPainted(true);
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) {
        window.setReferencePairs({}, 0);
        choose(window, "many");
        window.m_pNextBtn->click();
    });
    click(console().m_pLoadDatabaseTB);
    EXPECT_EQ(m_questions, QStringList{"The list holds no more than 255 spectra. Select fewer of them."});
    EXPECT_EQ(names(), QStringList{"UMX1"});
}

TEST_F(ConsoleSpectraTest, AWindowThatGoesMeanwhileTakesTheLibraryWithIt)
{
    openCube();
    inWindow<SpUnmixSpectrumLibraryWnd>([this](SpUnmixSpectrumLibraryWnd&) {
        delete m_pConsole;
        m_pConsole = nullptr;
    });
    QMetaObject::invokeMethod(&console(), "onClickLoadSpectrumLibrary");
    EXPECT_EQ(m_nSeen, m_nExpected);
}

TEST_F(ConsoleSpectraTest, ImportWritesOneSpectrumIntoItsRow)
{
    openCube();
    addPainted(true);
    addPainted(false);
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) {
        EXPECT_EQ(window.windowTitle(), "Import Single Spectrum");
        choose(window, "others");
        EXPECT_FALSE(window.m_pNextBtn->isEnabled()); // they lack images
        choose(window, "dyes");
        window.m_rows[0]->m_pSelectBox->click();
        window.m_pNextBtn->click();
    });
    const Values other = values(1);
    chooseTool(0, "Import");
    EXPECT_EQ(m_nSeen, m_nExpected);
    EXPECT_EQ(values(0), (Values{1, 2, 3, 4}));
    EXPECT_EQ(values(1), other);
    EXPECT_EQ(names(), (QStringList{"UMX1", "UMX2"}));
    EXPECT_EQ(console().m_spectra[0]->origin, "lab");
    EXPECT_FALSE(row(0).m_pToolButton->isChecked());
    EXPECT_EQ(console().m_pActiveCtrl, nullptr);
    // Once more by a click on the tool.
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) { window.reject(); });
    row(0).m_pToolButton->click();
    EXPECT_EQ(m_nSeen, m_nExpected);
    EXPECT_EQ(values(0), (Values{1, 2, 3, 4}));
    EXPECT_FALSE(row(0).m_pToolButton->isChecked());
}

TEST_F(ConsoleSpectraTest, ImportIntoAnEmptyRowEnablesIt)
{
    openCube();
    click(console().m_pAddSpectrum);
    EXPECT_FALSE(row(0).m_pSelectBox->isEnabled());
    inWindow<SpUnmixSpectrumLibraryWnd>([](SpUnmixSpectrumLibraryWnd& window) {
        choose(window, "dyes");
        window.m_pNextBtn->click();
    });
    chooseTool(0, "Import");
    EXPECT_TRUE(row(0).m_pSelectBox->isEnabled());
    EXPECT_TRUE(row(0).m_pNameEdit->isEnabled());
    EXPECT_EQ(values(0), (Values{10, 20, 30, 40}));
}

// The computed spectrum.

class ConsolePureTest : public ConsoleSpectraTest
{
protected:
    void openTwo()
    {
        openCube();
        const auto known = spectrumOf("Known", "gold", {1, 1, 1, 1});
        const auto mixed = spectrumOf("Mixed", "pink", {1, 2, 3, 4});
        console().setSpectra({known.get(), mixed.get()});
    }
};

TEST_F(ConsolePureTest, ItsButtonAsksForTwoUsableSpectra)
{
    openCube();
    EXPECT_FALSE(console().m_pComputeSpectrum->isEnabled());
    addPainted(true);
    EXPECT_FALSE(console().m_pComputeSpectrum->isEnabled());
    addPainted(false);
    EXPECT_TRUE(console().m_pComputeSpectrum->isEnabled());
    tick(0);
    EXPECT_FALSE(console().m_pComputeSpectrum->isEnabled());
}

TEST_F(ConsolePureTest, AResultBecomesANewRowAndTheMixedOneLosesItsTick)
{
    openTwo();
    ASSERT_TRUE(CORVUtilityFns::canClose());
    inWindow<SpumKyvoCPSWnd>([this](SpumKyvoCPSWnd& window) {
        EXPECT_FALSE(CORVUtilityFns::canClose());
        asTheyAre(window);
        window.m_pNameLE->setText("Pure");
        window.m_pColorCB->setCurrentText("cyan");
        apply(window);
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(window.m_pListBoxA->count(), 3);
        EXPECT_EQ(window.m_pNameLE->text(), "UMX4");
        window.reject();
    });
    click(console().m_pComputeSpectrum);
    EXPECT_EQ(m_nSeen, m_nExpected);
    EXPECT_TRUE(CORVUtilityFns::canClose());
    EXPECT_EQ(names(), (QStringList{"Known", "Mixed", "Pure"}));
    EXPECT_EQ(values(2), (Values{0, 1, 2, 3}));
    EXPECT_EQ(row(2).m_pColorCombo->currentText(), "cyan");
    EXPECT_TRUE(isTicked(0));
    EXPECT_FALSE(isTicked(1));
    EXPECT_TRUE(isTicked(2));
    EXPECT_EQ(row(2).m_pIndexLabel->text(), "3");
    EXPECT_TRUE(m_log.contains("SpumKyvo: Compute Pure Spectrum done!"));
    EXPECT_TRUE(console().m_bSpectraModified);
}

TEST_F(ConsolePureTest, AResultGoesToTheRowThatIsChosen)
{
    openTwo();
    inWindow<SpumKyvoCPSWnd>([](SpumKyvoCPSWnd& window) {
        asTheyAre(window);
        window.m_pIndexCB->setCurrentIndex(0);
        EXPECT_EQ(window.m_pNameLE->text(), "Known");
        window.m_pNameLE->setText("<b>x</b>");
        apply(window);
        window.reject();
    });
    click(console().m_pComputeSpectrum);
    EXPECT_EQ(names(), (QStringList{"<b>x</b>", "Mixed"}));
    EXPECT_EQ(values(0), (Values{0, 1, 2, 3}));
    EXPECT_EQ(values(1), (Values{1, 2, 3, 4}));
    EXPECT_TRUE(isTicked(0));
    EXPECT_FALSE(isTicked(1));
}

TEST_F(ConsolePureTest, InTheDrawingStepANewRowIsNoBackground)
{
    openCube();
    console().setBackgroundMode(true);
    const auto known = spectrumOf("Known", "gold", {1, 1, 1, 1});
    const auto mixed = spectrumOf("Mixed", "pink", {1, 2, 3, 4});
    console().setSpectra({known.get(), mixed.get()});
    inWindow<SpumKyvoCPSWnd>([](SpumKyvoCPSWnd& window) {
        apply(window);
        window.reject();
    });
    click(console().m_pComputeSpectrum);
    ASSERT_EQ(rows(), 3);
    EXPECT_FALSE(isTicked(2));
}

TEST_F(ConsolePureTest, ARowWithoutANameIsAskedFor)
{
    openTwo();
    row(1).m_pNameEdit->clear();
    click(console().m_pComputeSpectrum);
    EXPECT_EQ(m_questions, QStringList{"Please enter a name for each unmixing component"});
    EXPECT_FALSE(console().m_pComputePureSpectrumWnd->isVisible());
}

TEST_F(ConsolePureTest, AWindowThatGoesMeanwhileLetsTheHostClose)
{
    openTwo();
    inWindow<SpumKyvoCPSWnd>([this](SpumKyvoCPSWnd&) {
        delete m_pConsole;
        m_pConsole = nullptr;
    });
    QMetaObject::invokeMethod(&console(), "onComputePureSpectrum");
    EXPECT_EQ(m_nSeen, m_nExpected);
    EXPECT_TRUE(CORVUtilityFns::canClose());
}

} // namespace
