// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CORVSequenceDataset;
class CORVSequenceWindow;
class CORVSpumKyvo;
class QString;
class QWidget;

// The host's windows around sequences, as an analysis uses them. Every function stands a null window.
namespace sequenceWindows {

// The window of the engine's sequence; null when the sequence or its window is gone.
CORVSequenceWindow* windowOf(const CORVSpumKyvo& engine);

// Shows the frame of the window in the work area, in front.
void showFrame(CORVSequenceWindow* pWindow);
// The same if the frame is minimised.
void showMinimisedFrame(CORVSequenceWindow* pWindow);

// Shows the widget as the tab of this title: a tab that is there becomes the current one, else it is added with its
// toolbar (may be null), which is shown above while the tab is current.
void showTab(CORVSequenceWindow* pWindow, const char* pTitle, QWidget* pWidget, QWidget* pToolBar);
void removeTab(CORVSequenceWindow* pWindow, const char* pTitle);

} // namespace sequenceWindows
