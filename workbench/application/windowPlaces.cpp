// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/windowPlaces.h"

#include "host/CORVSettings.h"

#include <QDockWidget>
#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>

namespace {

constexpr const char* const geometryKey = "Workbench/Window/Geometry";
constexpr const char* const stateKey = "Workbench/Window/State";
// Of the panels and toolbars there are; another number lets an older arrangement go.
constexpr int stateVersion = 1;
constexpr int leastWidth = 100;
constexpr int leastHeight = 24;

QList<QRect> screens()
{
    QList<QRect> all;
    for (const QScreen* pScreen : QGuiApplication::screens()) {
        all.append(pScreen->availableGeometry());
    }
    return all;
}

int area(const QRect& rect)
{
    return rect.isEmpty() ? 0 : rect.width() * rect.height();
}

bool isReachable(const QRect& place, const QRect& screen)
{
    const QRect titleBar(place.left(), place.top(), place.width(), leastHeight);
    const QRect seen = titleBar & screen;
    return seen.width() >= qMin(leastWidth, place.width()) && seen.height() >= leastHeight;
}

void bringBack(QWidget& window)
{
    if (window.isMaximized() || window.isFullScreen()) {
        return;
    }
    const QRect place = window.geometry();
    const QRect better = windowPlaces::reachable(place, screens());
    if (better != place) {
        window.setGeometry(better);
    }
}

} // namespace

namespace windowPlaces {

QRect reachable(const QRect& place, const QList<QRect>& allScreens)
{
    if (allScreens.isEmpty()) {
        return place;
    }
    QRect home = allScreens.first();
    for (const QRect& screen : allScreens) {
        if (isReachable(place, screen)) {
            return place;
        }
        if (area(screen & place) > area(home & place)) {
            home = screen;
        }
    }
    const QSize size(qMin(place.width(), home.width()), qMin(place.height(), home.height()));
    const QPoint corner(qBound(home.left(), place.left(), home.left() + home.width() - size.width()),
                        qBound(home.top(), place.top(), home.top() + home.height() - size.height()));
    return QRect(corner, size);
}

void save(CORVSettings& settings, const QMainWindow& window)
{
    settings.setValue(QLatin1String(geometryKey), window.saveGeometry());
    settings.setValue(QLatin1String(stateKey), window.saveState(stateVersion));
}

bool restore(const CORVSettings& settings, QMainWindow& window)
{
    const QByteArray geometry = settings.value(QLatin1String(geometryKey)).toByteArray();
    if (geometry.isEmpty() || !window.restoreGeometry(geometry)) {
        return false;
    }
    window.restoreState(settings.value(QLatin1String(stateKey)).toByteArray(), stateVersion);
    bringBack(window);
    for (QDockWidget* pDock : window.findChildren<QDockWidget*>()) {
        if (pDock->isFloating()) {
            bringBack(*pDock);
        }
    }
    return true;
}

} // namespace windowPlaces
