// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/helpTexts.h"

#include <QCoreApplication>

namespace helpTexts {

QString about(const QString& strVersion, const QString& strPlugin)
{
    return QCoreApplication::translate(
               "helpTexts", "<h3>spum-workbench %1</h3>"
                            "<p>Spectral and temporal unmixing of optical images.</p>"
                            "<p>Tools: %2</p>"
                            "<p>This is free software under the terms of the GNU General Public License, version 3 or "
                            "later (GPL-3.0-or-later). There is no warranty.</p>")
        .arg(strVersion.toHtmlEscaped(), strPlugin.toHtmlEscaped());
}

QString guide()
{
    return QCoreApplication::translate(
        "helpTexts",
        "<h3>From images to maps</h3>"
        "<ol>"
        "<li>Open a sequence (Ctrl+O), or import images (Ctrl+I). A folder or a file can also be dropped on the "
        "window.</li>"
        "<li>The panel at the side shows the images of the sequence on the grid of their filters, or of their times. "
        "Tick those to unmix, choose a method and press <b>Start Unmixing</b>.</li>"
        "<li>With <b>Automatic</b> a wizard asks for the mask over the photograph and for the components. "
        "<b>PCA</b> suggests how many there are.</li>"
        "<li>The tab <b>Unmixing</b> shows the maps and the spectra; a double click on a tile opens a map, and on the "
        "last one the composite.</li>"
        "<li>The panel's page <b>Results</b> has the numbers and saves the result with the sequence. After images were "
        "imported and unmixed by number alone, <b>Refine Spectra</b> there mostly brings it nearer to the truth.</li>"
        "</ol>"
        "<p>While an analysis runs everything else is off. <b>Esc</b> aborts it.</p>"
        "<p>What could not be done stands in the log (View &gt; Log), its warnings also at the lower edge of the "
        "window.</p>"
        "<h3>Views</h3>"
        "<table cellspacing=\"6\">"
        "<tr><td>Wheel, + and -</td><td>zoom</td></tr>"
        "<tr><td>Double click, 0</td><td>the whole picture</td></tr>"
        "<tr><td>Middle button, arrows</td><td>move</td></tr>"
        "<tr><td>Drag after a click on the rectangle, the ellipse or the outline below an image</td><td>draw a region"
        "</td></tr>"
        "<tr><td>Clicks after one on the polygon there</td><td>set its corners; a double click or Return closes it, "
        "Backspace or Ctrl+Z takes a corner back, Esc gives it up</td></tr>"
        "<tr><td>Drag, arrows, Del on a chosen region</td><td>move or resize, move by a pixel, remove it</td></tr>"
        "</table>"
        "<h3>Keys</h3>"
        "<table cellspacing=\"6\">"
        "<tr><td>Ctrl+O</td><td>open a sequence</td></tr>"
        "<tr><td>Ctrl+I</td><td>import images</td></tr>"
        "<tr><td>Ctrl+S</td><td>save the map in front as an image by itself</td></tr>"
        "<tr><td>Ctrl+W</td><td>close the window in front</td></tr>"
        "<tr><td>Ctrl+F6, Ctrl+Shift+F6</td><td>next and previous window</td></tr>"
        "<tr><td>Ctrl+Page Down, Ctrl+Page Up</td><td>next and previous tab</td></tr>"
        "<tr><td>Ctrl+Z, Ctrl+Shift+Z</td><td>take a change of a region of an image back, make it again</td></tr>"
        "<tr><td>Ctrl+Shift+C</td><td>copy the picture of the tab</td></tr>"
        "<tr><td>Ctrl+P</td><td>print it</td></tr>"
        "<tr><td>F6</td><td>from the images to the panel and back</td></tr>"
        "<tr><td>F11</td><td>full screen</td></tr>"
        "<tr><td>Ctrl+Q</td><td>quit</td></tr>"
        "</table>");
}

} // namespace helpTexts
