#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""usage: scripts/with-xvfb.sh scripts/window_pauses.py BUILD FOLDER

Goes from a sequence to maps in the window of the build folder BUILD, for 24 images of 1024 x 1024 and for a scan of 16
spots, and opens images of 4096 x 4096, all simulated below FOLDER where they are missing. Prints the longest pauses of
the event loop in each stage, the way from an abort until the panel is back, and the memory of the process, as markdown.
"""
import contextlib
import io
import os
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import drive


class Window:
    def __init__(self, build, sequence):
        self.path = os.path.join(tempfile.mkdtemp(), 'socket')
        home = os.path.dirname(self.path)
        for name in ('CONFIG', 'DATA', 'CACHE'):
            os.environ[f'XDG_{name}_HOME'] = os.path.join(home, name.lower())
        with contextlib.redirect_stdout(io.StringIO()):
            if drive.start(self.path, [os.path.join(build, 'bin', 'spum-workbench'), sequence]):
                sys.exit('the window does not start')
        self.pid = int(subprocess.check_output(['pgrep', '-n', 'spum-workbench']))

    def ask(self, do, widget=None, **words):
        words['do'] = do
        if widget:
            words['widget'] = widget
        return drive.ask(self.path, words)

    def until(self, holds, seconds=120.0, pause=0.02):
        end = time.monotonic() + seconds
        while not holds():
            if time.monotonic() > end:
                sys.exit('the window does not come so far')
            time.sleep(pause)

    def shows(self, widget):
        return self.ask('find', widget).get('visible', False)

    def longest(self):
        self.ask('quiet', ms=100)
        return max(self.ask('stalls')['ms'] or [0])

    def megabytes(self):
        with open(f'/proc/{self.pid}/status', encoding='ascii') as status:
            return next(int(line.split()[1]) // 1024 for line in status if line.startswith('VmRSS'))

    def open_wizard(self):
        self.until(lambda: self.shows('tabWidget1'))
        self.ask('tab', 'tabWidget1', text='Analyze')
        self.until(lambda: self.shows('m_pWaveLengthTable/.QCheckBox'))
        self.ask('choose', 'm_pUnmixingMethodsCMB', text='Automatic')
        self.until(lambda: self.ask('find', 'm_pUnmixingMethodsCMB')['text'] == 'Automatic')
        self.longest()
        self.ask('click', 'm_pUnmixSpectraButton')
        # A result may be asked about before it goes.
        self.until(lambda: self.ask('click', '.QMessageBox/.QPushButton[No]') and self.shows('SpUnmixWizardWnd'))
        self.until(lambda: self.ask('find', 'qt_wizard_finish').get('enabled'))

    def run(self):
        """The longest pause before the engine works, meanwhile, and in what follows."""
        self.ask('stalls')
        self.ask('click', 'qt_wizard_finish')
        during = 0
        last = 0
        self.until(lambda: self.shows('abortButton') or self.shows('m_pSPUnResultsLV'))
        before = max(self.ask('stalls')['ms'] or [0])
        while self.shows('abortButton'):
            during = max(during, last)
            last = max(self.ask('stalls')['ms'] or [0])
            time.sleep(0.05)
        self.until(lambda: self.shows('m_pSPUnResultsLV'))
        return before, during, max(last, self.longest())

    def write_report(self):
        """The longest pause up to the question for the folder, meanwhile, and at its end; and how long all takes."""
        self.ask('tab', 'tabWidget1', text='Results')
        self.until(lambda: self.ask('find', 'm_pReportButton').get('enabled'))
        self.longest()
        self.ask('click', 'm_pReportButton')
        self.until(lambda: self.shows('fileNameEdit'))
        self.longest()
        self.ask('key', 'fileNameEdit', keys='Return')
        begin = time.monotonic()
        self.until(lambda: self.shows('abortButton'))
        pauses = self.ask('stalls')['ms'] or [0]
        during = 0
        last = 0
        while self.shows('abortButton'):
            during = max(during, last)
            last = max(self.ask('stalls')['ms'] or [0])
            time.sleep(0.05)
        took = round(time.monotonic() - begin, 1)
        return max(pauses), during, max(last, self.longest()), took

    def end(self):
        os.kill(self.pid, 9)


def sequence(build, folder, options):
    if not os.path.isdir(folder):
        subprocess.check_call([os.path.join(build, 'bin', 'spum'), 'simulate', folder, '--quiet'] + options)
    return folder


def row(what, *values):
    print('| ' + ' | '.join([what] + [str(value) for value in values]) + ' |', flush=True)


def measure_mouse(build, folder):
    window = Window(build, sequence(build, folder, ['--size', '1024', '--bands', '24']))
    window.until(lambda: window.shows('m_pWaveLengthTable/.QCheckBox'))
    row('opening, thumbnails', window.longest())
    window.open_wizard()
    row('the wizard opens', window.longest())
    steps = []
    for angle in [120] * 5 + [-120] * 5:
        window.ask('wheel', 'm_pThresholdSlider', angle=angle)
        steps.append(window.longest())
    row('a step of the threshold', max(steps))
    before, during, after = window.run()
    row('images and mask are taken', before)
    row('the run', during)
    row('its end: maps, plots, tiles', after)
    window.ask('click', 'm_pIndividualScaleCkB')
    row('one scale for all', window.longest())
    place = window.ask('find', 'm_pDataSpanSlider')['place']
    steps = []
    for step in range(8):
        x = place[2] - 12 - 6 * step
        window.ask('drag', 'm_pDataSpanSlider', **{'from': [x, place[3] // 2], 'to': [x - 6, place[3] // 2], 'steps': 1})
        steps.append(window.longest())
    row('a step of the scale', max(steps))
    back = []
    for attempt in range(8):
        window.open_wizard()
        window.longest()
        window.ask('click', 'qt_wizard_finish')
        window.until(lambda: window.shows('abortButton'))
        time.sleep(0.04 * attempt)
        begin = time.monotonic()
        if not window.ask('click', 'abortButton')['ok']:
            continue
        window.until(lambda: not window.shows('abortButton') and window.ask('find', 'tabWidget1')['enabled'], pause=0.0)
        back.append(round(1000.0 * (time.monotonic() - begin)))
    row('from an abort until the panel is back, of %d' % len(back), max(back))
    row('memory', f'{window.megabytes()} MB')
    window.end()


def measure_scan(build, folder):
    window = Window(build, sequence(build, folder, ['--kind', 'transillumination', '--size', '1024', '--spots', '16']))
    window.open_wizard()
    before = window.megabytes()
    taken, during, after = window.run()
    row('a scan of 16 spots: images and mask are taken', taken)
    row('the run', during)
    row('its end', after)
    row('memory of its cube and results', f'{window.megabytes() - before} MB')
    before, during, after, took = window.write_report()
    row('its report, of %.0f s: the folder is chosen' % took, before)
    row('it is written', during)
    row('its end', after)
    window.end()


def measure_large_images(build, folder):
    window = Window(build, sequence(build, folder, ['--size', '4096', '--bands', '2']))
    window.until(lambda: window.shows('m_pThumbnailView'))
    time.sleep(5)
    row('images of 4096 x 4096: opening, thumbnails', window.longest())
    # The photograph stands first. The first window of an image brings OpenGL along, whatever its size.
    for column, what in ((1, 'the first one opens'), (2, 'another one opens')):
        window.ask('item', 'm_pThumbnailView', row=0, column=column, double=True)
        time.sleep(5)
        window.until(lambda: window.ask('find', 'm_pRangeSlider').get('enabled'))
        row(what, window.longest())
        window.ask('choose', 'm_pImageUnitBox', text='Counts')
        time.sleep(5)
        window.until(lambda: window.ask('find', 'm_pRangeSlider').get('enabled'))
        row('it is shown in another unit', window.longest())
        window.ask('key', keys='Ctrl+W')
        window.until(lambda: window.shows('m_pThumbnailView'))
        window.longest()
    row('memory', f'{window.megabytes()} MB')
    window.end()


def main(arguments):
    if len(arguments) != 2:
        sys.stderr.write(__doc__ + '\n')
        return 2
    build, folder = arguments
    os.makedirs(folder, exist_ok=True)
    print('| stage | longest pause in ms |\n|---|---|')
    measure_mouse(build, os.path.join(folder, 'mouse'))
    measure_scan(build, os.path.join(folder, 'scan'))
    measure_large_images(build, os.path.join(folder, 'large'))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
