// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "windows/ui_SpUnmixCompositeWnd.h"

#include "XTNT/xtnt_matrix.h"
#include "host/CILImage.h"
#include "spectra/CompositeChannel.h"
#include "windows/CompositeLayer.h"
#include "windows/CompositeMaps.h"

#include <QDialog>
#include <QImage>
#include <QList>
#include <QPair>
#include <QPointer>
#include <QString>

#include <vector>

class CORVQImageView;
class QAction;
class QActionGroup;
class QFrame;
class QTimer;
class QToolButton;

// Overlays the maps of an analysis into one false-colour picture, each in its own colour, over a photograph or an X-ray
// image, and lets the user adjust each of them. See compositePicture.h for the arithmetic.
//
// The picture is made when it is seen or asked for. finished(1) tells that the window is closed; the dialog sends it
// twice.
class SpUnmixCompositeWnd : public QDialog, public Ui::SpUnmixCompositeWnd
{
    Q_OBJECT

public:
    explicit SpUnmixCompositeWnd(QWidget* pParent = nullptr);
    ~SpUnmixCompositeWnd() override;

    // Starts over with the maps of a result: one row of `concentrations` a channel, one column per pixel and spot; see
    // CompositeMaps. The photograph (null: none) is copied, the maps are shared and may not be changed in place. Sizes
    // that do not go together are told in the log, and nothing changes. The entry that is selected stays so when the
    // list has the same names as before.
    void setCompositeData(CILImage* pPhoto, const XTNT::Matrix<double>& concentrations, int nUnitIndex,
                          const std::vector<int>& pixelIndices, int nWidth, int nHeight,
                          const QList<CompositeChannel>& channels, int nSpots);
    // Borrowed until another one is set; null does nothing.
    void setXRayImage(CILImage* pImage);
    // From 0. Nothing for data of one spot and for a spot that there is not.
    void setCurrentSpot(int nSpot);
    // Without labels; null before there are maps.
    const QImage& getCompositeImage();
    // As it is seen, with labels and zoom.
    QImage getViewImage();

    void reject() override;

    QList<CompositeChannel*> m_channels; // the components and, as the last one, the background; owned
    CILImage m_backgroundImage;
    CILImage* m_pPhotoImage = nullptr; // borrowed
    CILImage* m_pXRayImage = nullptr;  // borrowed
    std::vector<int> m_pixelIndices;
    XTNT::Matrix<double> m_data;
    XTNT::Matrix<double> m_spotData; // of the spot that is shown; at first all
    QPointer<CORVQImageView> m_pView;
    QList<QPair<double, double>> m_ranges; // of the data of each channel
    QImage m_compositeImage;               // made last; see getCompositeImage()
    bool m_bHasXRay = false;
    int m_nImageWidth = 0;
    int m_nImageHeight = 0;
    int m_nSpotCount = 0;
    int m_nCurrentSpot = 0;

    QPointer<QFrame> m_pToolbarFrame; // for the strip above the tab; owned
    QToolButton* m_pSetBackgroundTB = nullptr;
    QToolButton* m_pTransferBtn = nullptr;
    QToolButton* m_pCopyToClipboardButton = nullptr;
    QToolButton* m_pExportGraphicButton = nullptr;
    QToolButton* m_pPrintButton = nullptr;

Q_SIGNALS:
    // The picture is to become the overview of the image cube.
    void updateImageCubeRGB();

public Q_SLOTS:
    void onTabSelected(QString strName);

protected Q_SLOTS:
    void onClickExportGraphics();
    void languageChange();
    void onChangeLowerSpan(int nValue);
    void onChangeUpperSpan(int nValue);
    void onImageListItemSelectionChanged();
    void onClickColorLabel();
    void onToggleLogScale(bool bValue);
    void onBrightnessChanged(double dValue);
    void onBrightnessSliderChanged(int nValue);
    void onMaxSpinBoxChanged(double dValue);
    void onMinSpinBoxChanged(double dValue);
    void onUnitChanged(int nIndex);
    void onImageItemChanged(QListWidgetItem* pItem);
    void onLabelChanged();
    void onSetBackgroundTBClicked();
    void onBackgroundMenuItemSelected(QAction* pAction);
    void onClickClose();
    void onTransferCompositeImage();

protected:
    void changeEvent(QEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;

private:
    void init();
    void connectControls();
    void createToolbar();
    void updateIcons();
    void rebuildBackgroundMenu();
    void showBackgroundAction(const QAction& action);
    void checkBackgroundAction(const QString& strText);
    bool takeBackground(const CILImage* pImage);
    static CILImage copyOf(const CILImage* pImage);
    static void logLowMemory();

    CompositeMaps maps() const;
    QList<CompositeLayer> layers() const;
    void takeLayers(const QList<CompositeLayer>& layers);
    void fillList();
    QStringList labels() const;
    // At once when the window is seen, else once it is, or once the picture is asked for.
    void updateComposite();
    void computeWhenDue();
    void computeComposite();
    void showLabels();
    void tellPixel(int nX, int nY);

    bool isBackground(int nRow) const { return nRow + 1 == m_channels.size(); }
    // The channel of the current entry; null when there is none.
    CompositeChannel* currentChannel() const;
    const QPair<double, double>& currentRange() const;
    void setBrightness(double dPercent);
    void takeBrightness(double dPercent);
    void takeSpan(int nValue, QDoubleSpinBoxEx& box, double CompositeChannel::*pFraction);
    void takeNumber(double dValue, void (QSpanSlider::*setEnd)(int), double CompositeChannel::*pFraction);

    QActionGroup* m_pBackgrounds = nullptr;
    QTimer* m_pWhenIdle = nullptr;
    bool m_bStale = false; // the picture is not that of the controls
    bool m_bDue = false;   // it is to be made
};
