// SPDX-License-Identifier: GPL-3.0-or-later
#include "driver/widgetSearch.h"

#include "driver/widgetState.h"

#include <QApplication>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct Step
{
    QString name;
    QString className;
    QString text;
    bool hasText = false;
    int number = -1;
};

Step stepOf(const QString& strStep)
{
    static const QRegularExpression pattern(R"(^(\.?)([^\[@]*)(?:\[([^\]]*)\])?(?:@(\d+))?$)");
    Step step;
    const auto match = pattern.match(strStep);
    (match.captured(1).isEmpty() ? step.name : step.className) = match.captured(2);
    step.hasText = strStep.contains('[');
    step.text = match.captured(3);
    step.number = match.captured(4).isEmpty() ? -1 : match.captured(4).toInt();
    return step;
}

bool fits(const QWidget& widget, const Step& step)
{
    if (!step.name.isEmpty() && widget.objectName() != step.name) {
        return false;
    }
    if (!step.className.isEmpty() && !widget.inherits(step.className.toLatin1().constData())) {
        return false;
    }
    return !step.hasText || shownText(widget).remove('&') == step.text;
}

// A window of a work area is shown even when another lies over the whole of it.
bool isBehindOthers(const QWidget& widget)
{
    return widget.inherits("QMdiSubWindow") && widget.visibleRegion().isEmpty();
}

void collect(QWidget* pWidget, bool bHidden, QList<QWidget*>* pOut)
{
    if (!bHidden && (!pWidget->isVisible() || isBehindOthers(*pWidget))) {
        return;
    }
    pOut->append(pWidget);
    for (QObject* pChild : pWidget->children()) {
        auto* pChildWidget = qobject_cast<QWidget*>(pChild);
        if (pChildWidget != nullptr && !pChildWidget->isWindow()) {
            collect(pChildWidget, bHidden, pOut);
        }
    }
}

QList<QWidget*> below(const QList<QWidget*>& roots, bool bWithRoots, bool bHidden)
{
    QList<QWidget*> found;
    for (QWidget* pRoot : roots) {
        QList<QWidget*> inside;
        collect(pRoot, bHidden, &inside);
        if (!bWithRoots && !inside.isEmpty()) {
            inside.removeFirst();
        }
        for (QWidget* pWidget : inside) {
            if (!found.contains(pWidget)) {
                found.append(pWidget);
            }
        }
    }
    return found;
}

} // namespace

QList<QWidget*> searchedWindows(bool bHidden)
{
    QList<QWidget*> windows;
    const auto add = [&windows, bHidden](QWidget* pWindow) {
        if (pWindow != nullptr && !windows.contains(pWindow) && (bHidden || pWindow->isVisible())) {
            windows.append(pWindow);
        }
    };
    add(QApplication::activePopupWidget());
    add(QApplication::activeModalWidget());
    add(QApplication::activeWindow());
    for (QWidget* pWindow : QApplication::topLevelWidgets()) {
        add(pWindow);
    }
    return windows;
}

QList<QWidget*> findWidgets(const QString& strPath, bool bHidden)
{
    QList<QWidget*> found = searchedWindows(bHidden);
    bool bFirst = true;
    for (const QString& strStep : strPath.split('/', Qt::SkipEmptyParts)) {
        const Step step = stepOf(strStep);
        QList<QWidget*> next;
        for (QWidget* pWidget : below(found, bFirst, bHidden)) {
            if (fits(*pWidget, step)) {
                next.append(pWidget);
            }
        }
        if (step.number >= 0) {
            next = next.mid(step.number, 1);
        }
        found = next;
        bFirst = false;
    }
    return found;
}
