#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Images as strangers have them, with known truth, unmixed by number alone and compared with other methods.

    accuracy_strangers.py PROGRAM FOLDER [SET ...] [--seed N] [--count] [-- OPTION ...]

PROGRAM is spum. The sets are made below FOLDER, imported, and unmixed with nothing but the number of components, and
the OPTIONs; another seed (0 unless told) makes other sets of the same kinds, in folders of their own. The table tells
the error of the maps, the mean angle of the spectra in degrees, and both over those of the best of the peers, which are
chosen by the truth for each set; the last lines have the geometric means.

The error of a map is the relative one of its best multiple; components are matched so that their mean is least. Peers
know the number too and stop by their own rules: non-negative factorisation by alternating columns from a start by
singular vectors (Cichocki & Phan 2009; Boutsidis & Gallopoulos 2008) and from three random ones, by multiplicative
updates for counts (Lee & Seung 2001), successive projections (Araujo et al. 2001) with a non-negative fit, and
alternating least squares with clipping from there. They keep their answers in FOLDER. Needs numpy and tifffile.

With --count nothing is unmixed: the table tells how many components `spum pca` counts, beside the truth.
"""
import itertools
import json
import shutil
import subprocess
import sys
from pathlib import Path

import numpy as np
import tifffile

SETS = {}


def a_set(function):
    """Registers a set: a function of a generator that returns rows, columns, axis, maps, spectra, images and files."""
    SETS[function.__name__] = function
    return function


# Shapes of sources

def smooth(image, size):
    rows, columns = image.shape
    y, x = np.fft.fftfreq(rows)[:, None], np.fft.fftfreq(columns)[None, :]
    return np.real(np.fft.ifft2(np.fft.fft2(image) * np.exp(-2 * (np.pi * size) ** 2 * (x * x + y * y))))


def field(rng, rows, columns, size):
    noise = smooth(rng.standard_normal((rows, columns)), size)
    return (noise - noise.mean()) / noise.std()


def blobs(rng, rows, columns, size, share):
    noise = field(rng, rows, columns, size)
    edge = np.quantile(noise, 1 - share)
    return np.clip((noise - edge) / (noise.max() - edge), 0, 1)


def nuclei(rng, rows, columns, number, radius):
    image = np.zeros((rows, columns))
    y, x = np.mgrid[:rows, :columns]
    for _ in range(number):
        a, b = radius * rng.uniform(0.7, 1.2, 2)
        inside = ((y - rng.uniform(0, rows)) / a) ** 2 + ((x - rng.uniform(0, columns)) / b) ** 2 < 1
        image = np.maximum(image, rng.uniform(0.5, 1) * inside)
    return smooth(image, 1).clip(0) * (0.8 + 0.2 * field(rng, rows, columns, 2)).clip(0.3, 1.5)


def filaments(rng, rows, columns, size):
    where = field(rng, rows, columns, 3 * size)
    where = (where - where.min()) / (where.max() - where.min())
    return np.exp(-(field(rng, rows, columns, size) / 0.25) ** 2) * np.clip(where - 0.35, 0, None) / 0.65


def puncta(rng, rows, columns, number, size):
    image = np.zeros((rows, columns))
    image[rng.integers(0, rows, number), rng.integers(0, columns, number)] = rng.uniform(0.3, 1, number)
    image = smooth(image, size).clip(0)
    return image / image.max()


def stains(rng, rows, columns, number):
    shapes = [lambda: nuclei(rng, rows, columns, 18, 11), lambda: filaments(rng, rows, columns, 5),
              lambda: blobs(rng, rows, columns, 9, 0.3), lambda: puncta(rng, rows, columns, 160, 1.6),
              lambda: blobs(rng, rows, columns, 4, 0.15), lambda: nuclei(rng, rows, columns, 40, 5)]
    return np.stack([shape().ravel() for shape in shapes[:number]])


def ground(rng, rows, columns, number, size, contrast):
    """Abundances that add up to 1; the larger the contrast, the more pixels hold one material alone."""
    parts = np.exp(contrast * np.stack([field(rng, rows, columns, size) for _ in range(number)]))
    return (parts / parts.sum(0)).reshape(number, -1)


# Spectra

def bell(axis, centre, width, tail=1.6):
    return np.where(axis < centre, np.exp(-0.5 * ((axis - centre) / width) ** 2),
                    np.exp(-0.5 * ((axis - centre) / (width * tail)) ** 2))


def dyes(axis, centres, width, tail=1.6):
    return np.stack([bell(axis, centre, width, tail) for centre in centres])


def lines(axis, *peaks):
    return sum(height * np.exp(-0.5 * ((axis - centre) / width) ** 2) for height, centre, width in peaks)


# Detectors

def counted(rng, maps, spectra, peak, offset=0.0, gain=1.0, read=2.0):
    light = maps.T @ spectra
    light *= peak / light.max()
    return rng.poisson(light) * gain + rng.normal(0, read * gain, light.shape) + offset


def em(axis):
    return [f"img_em{int(x)}" for x in axis]


# Twelve kinds, from microscopes, cameras and the air

@a_set
def confocal3(rng):
    axis, maps = np.linspace(500, 640, 8), stains(rng, 256, 256, 3)
    spectra = dyes(axis, (520, 560, 600), 14)
    return 256, 256, em(axis), maps, spectra, counted(rng, maps, spectra, 400, 100, 4), np.uint16


@a_set
def lambda5(rng):
    axis, maps = np.linspace(415, 695, 32), stains(rng, 200, 200, 5)
    spectra = dyes(axis, (455, 510, 540, 580, 620), 16, 2)
    return 200, 200, em(axis), maps, spectra, counted(rng, maps, spectra, 300, 0, 1), np.uint16


@a_set
def filters3(rng):
    spectra, maps = np.array([[1, .25, .05, 0], [.1, 1, .3, .05], [0, .1, 1, .35]]), stains(rng, 192, 192, 3)
    return 192, 192, em([450, 525, 600, 700]), maps, spectra, counted(rng, maps, spectra, 200, 5, 1.1), np.uint8


@a_set
def pairs6(rng):
    pairs = [(a, b) for a in (405, 488, 561) for b in (450, 520, 580, 620, 680) if b > a]
    peaks = [(400, 450), (470, 515), (500, 540), (550, 580), (580, 620), (405, 640)]
    spectra = np.array([[float(bell(np.array(a), e, 35, .7) * bell(np.array(b), m, 15, 1.8)) for a, b in pairs]
                        for e, m in peaks])
    maps = stains(rng, 160, 160, 6)
    names = [f"c_ex{a}_em{b}" for a, b in pairs]
    return 160, 160, names, maps, spectra, counted(rng, maps, spectra, 2000, 0, 1), np.uint16


@a_set
def oblong2(rng):
    axis, maps = np.linspace(520, 645, 6), stains(rng, 200, 320, 2)
    spectra = dyes(axis, (530, 585), 16)
    images = counted(rng, maps, spectra, 600, 0, 1)
    return 200, 320, em(axis), maps, spectra, images / images.max(), np.float32


@a_set
def zeros4(rng):
    axis, maps = np.linspace(500, 680, 10), stains(rng, 224, 224, 4)
    spectra = dyes(axis, (515, 550, 590, 640), 14)
    images = counted(rng, maps, spectra, 800, 0, 1)
    images[maps.sum(0) < .02] = 0
    return 224, 224, em(axis), maps, spectra, images, np.uint16


@a_set
def land4(rng):
    axis, maps = np.linspace(420, 950, 60), ground(rng, 120, 120, 4, 7, 4)
    spectra = np.stack([.08 + lines(axis, (.08, 550, 25), (.5, 850, 90)), .15 + .35 * (axis - 420) / 530,
                        .06 * np.exp(-(axis - 420) / 150) + .01, .3 + lines(axis, (.1, 700, 250))])
    images = maps.T @ spectra + rng.normal(0, .004, (maps.shape[1], axis.size))
    return 120, 120, em(axis), maps, spectra, images, np.float32


@a_set
def denoised4(rng):
    axis, maps = np.linspace(500, 690, 12), stains(rng, 256, 256, 4)
    spectra = dyes(axis, (515, 555, 600, 650), 15)
    images = counted(rng, maps, spectra, 150)
    images = np.stack([smooth(image.reshape(256, 256), 1.2).ravel() for image in images.T], 1) * 50
    return 256, 256, em(axis), maps, spectra, images, np.uint16


@a_set
def tissue3(rng):
    axis, maps = np.linspace(500, 680, 16), stains(rng, 256, 256, 3)
    spectra = np.stack([bell(axis, 530, 45, 2), bell(axis, 560, 13), bell(axis, 620, 14)])
    maps[0] = .35 + .3 * blobs(rng, 256, 256, 14, .6).ravel()
    return 256, 256, em(axis), maps, spectra, counted(rng, maps, spectra, 60, 20, 1, 1.5), np.uint16


@a_set
def offset3(rng):
    axis, maps = np.linspace(500, 650, 7), stains(rng, 256, 256, 3)
    spectra = dyes(axis, (515, 565, 615), 14)
    return 256, 256, em(axis), maps, spectra, counted(rng, maps, spectra, 800, 500, 1, 3), np.uint16


@a_set
def stretched3(rng):
    axis, maps = np.linspace(500, 650, 6), stains(rng, 256, 256, 3)
    spectra = dyes(axis, (515, 565, 615), 18)
    images = counted(rng, maps, spectra, 120, 3, 1.7)
    return 256, 256, em(axis), maps, spectra, np.rint(images / 4) * 4, np.uint8


@a_set
def bands2(rng):
    spectra, maps = np.array([[1, .4, .1], [.15, .8, 1]]), stains(rng, 180, 180, 2)
    return 180, 180, em([520, 570, 620]), maps, spectra, counted(rng, maps, spectra, 500, 0, 2), np.uint16


# Others: scenes from the air, few bands, few photons, courses in time, lines over a background

@a_set
def scene3(rng):
    axis, maps = np.linspace(400, 890, 156), ground(rng, 95, 95, 3, 8, 6)
    spectra = np.stack([.1 + .3 * (axis - 400) / 490, .04 + lines(axis, (.04, 550, 25)) +
                        .45 / (1 + np.exp(-(axis - 720) / 12)), .05 * np.exp(-(axis - 400) / 200) + .005])
    own = 1 + .05 * np.stack([field(rng, 95, 95, 3).ravel() for _ in range(3)])
    images = (maps * own).T @ spectra + rng.normal(0, .003, (maps.shape[1], axis.size))
    return 95, 95, em(axis), maps, spectra, images * 10000, np.int16


@a_set
def minerals5(rng):
    axis, maps = np.linspace(400, 994, 100), ground(rng, 60, 80, 5, 5, 1.5)
    base = .4 + .2 * (axis - 400) / 600
    spectra = np.stack([base * (1 - lines(axis, *peaks)) for peaks in (
        ((.5, 480, 30), (.3, 870, 40)), ((.6, 530, 25),), ((.4, 650, 60), (.2, 900, 20)),
        ((.5, 760, 30), (.2, 430, 25)), ((.3, 950, 40), (.3, 600, 25)))])
    images = maps.T @ spectra + rng.normal(0, .002, (maps.shape[1], axis.size))
    return 60, 80, em(axis), maps, spectra, images, np.float32


@a_set
def roofs4(rng):
    axis = np.linspace(420, 915, 100)
    kinds = np.argmax(np.stack([field(rng, 110, 90, 4) for _ in range(4)]), 0)
    maps = np.stack([smooth((kinds == k) * 1.0, .8).clip(0).ravel() for k in range(4)])
    spectra = np.stack([.12 + .02 * (axis - 420) / 500, .05 + lines(axis, (.05, 550, 25)) +
                        .4 / (1 + np.exp(-(axis - 720) / 12)), .08 + .3 / (1 + np.exp(-(axis - 590) / 20)),
                        .1 + .35 * ((axis - 420) / 495) ** .7])
    shade = (1 + .25 * field(rng, 110, 90, 5).ravel()).clip(.3, 1.6)
    images = (maps * shade).T @ spectra + rng.normal(0, .005, (maps.shape[1], axis.size))
    return 110, 90, em(axis), maps * shade, spectra, images, np.float32


@a_set
def crosstalk4(rng):
    spectra = np.array([[1, .15, .02, 0], [.08, 1, .22, .02], [.01, .12, 1, .2], [0, .01, .1, 1]])
    maps = stains(rng, 180, 260, 4)
    return 180, 260, em([455, 525, 605, 700]), maps, spectra, counted(rng, maps, spectra, 900, 0, .8), np.uint16


@a_set
def dim3(rng):
    axis, maps = np.linspace(500, 620, 5), stains(rng, 200, 160, 3)
    spectra = dyes(axis, (510, 545, 590), 16)
    return 200, 160, em(axis), maps, spectra, counted(rng, maps, spectra, 60, 0, 2, .5), np.uint8


@a_set
def photons3(rng):
    axis, maps = np.linspace(480, 630, 16), stains(rng, 192, 192, 3)
    spectra = dyes(axis, (505, 540, 585), 13)
    return 192, 192, em(axis), maps, spectra, counted(rng, maps, spectra, 15, 0, 1, 0), np.uint16


@a_set
def kinetics3(rng):
    t = np.linspace(0, 195, 40)
    maps = np.stack([blobs(rng, 120, 150, 6, .2).ravel(), blobs(rng, 120, 150, 8, .35).ravel(),
                     .3 + .2 * blobs(rng, 120, 150, 12, .6).ravel()])
    spectra = np.stack([t / 15 * np.exp(1 - t / 15), 1 - np.exp(-t / 60),
                        (1 - np.exp(-t / 10)) * np.exp(-t / 120)])
    names = [f"frame_t{x:g}s" for x in t]
    return 120, 150, names, maps, spectra, counted(rng, maps, spectra, 3000, 0, 1, 8), np.uint16


@a_set
def raman4(rng):
    axis, maps = np.arange(150), stains(rng, 96, 96, 4)
    spectra = np.stack([lines(axis, (1, 20, 3), (.6, 88, 4), (.3, 130, 3)), lines(axis, (1, 45, 4), (.5, 92, 3)),
                        lines(axis, (1, 60, 3), (.7, 24, 4), (.2, 110, 5)), .4 + .5 * np.exp(-axis / 60.0)])
    maps[3] = .3 + .2 * blobs(rng, 96, 96, 12, .5).ravel()
    images = maps.T @ spectra + rng.normal(0, .03, (maps.shape[1], axis.size))
    return 96, 96, [f"channel_{x:03d}" for x in axis], maps, spectra, images + .2, np.float32


@a_set
def reading3(rng):
    axis, maps = np.linspace(500, 640, 8), stains(rng, 240, 200, 3)
    spectra = dyes(axis, (515, 555, 605), 15)
    images = maps.T @ spectra
    images = images / images.max() * 600 + rng.normal(0, 1, images.shape) * np.array([10, 10, 12, 15, 20, 25, 30, 40])
    return 240, 200, em(axis), maps, spectra, images.clip(0), np.uint16


@a_set
def multiplex5(rng):
    axis, maps = np.linspace(440, 740, 7), stains(rng, 220, 300, 5)
    spectra = dyes(axis, (450, 520, 570, 620, 680), 20)
    spectra[2] = bell(axis, 520, 70, 2)
    maps[2] = .15 + .15 * blobs(rng, 220, 300, 14, .6).ravel()
    return 220, 300, em(axis), maps, spectra, counted(rng, maps, spectra, 1500, 0, .5, 3), np.uint16


@a_set
def frames3(rng):
    t = np.array([5, 15, 25, 35, 50, 70, 90, 120, 160, 200, 260, 340, 440, 560, 700, 900.0])
    maps = np.stack([blobs(rng, 100, 100, 4, .12).ravel(), blobs(rng, 100, 100, 7, .3).ravel(),
                     .2 + .3 * blobs(rng, 100, 100, 10, .5).ravel()])
    spectra = np.stack([np.exp(-t / 60), (1 - np.exp(-t / 150)), t / 200 * np.exp(1 - t / 200)])
    images = counted(rng, maps, spectra, 120, 0, 1, 0)
    images = np.stack([smooth(image.reshape(100, 100), .8).ravel() for image in images.T], 1)
    return 100, 100, [f"frame_t{x:g}s" for x in t], maps, spectra, images.clip(0), np.float32


@a_set
def alike2(rng):
    axis, maps = np.linspace(500, 600, 6), stains(rng, 250, 180, 2)
    spectra = dyes(axis, (520, 534), 14)
    return 250, 180, em(axis), maps, spectra, counted(rng, maps, spectra, 1500, 0, 2, 2), np.uint16


# Made after the program's first constants were chosen

@a_set
def sparse6(rng):
    axis = np.linspace(430, 720, 24)
    maps = np.stack([puncta(rng, 180, 180, 60, 2).ravel() for _ in range(3)] +
                    [nuclei(rng, 180, 180, 10, 9).ravel() for _ in range(3)])
    spectra = dyes(axis, (455, 490, 530, 575, 620, 665), 15)
    return 180, 180, em(axis), maps, spectra, counted(rng, maps, spectra, 700), np.uint16


@a_set
def overlap3(rng):
    axis, maps = np.linspace(500, 620, 9), stains(rng, 200, 200, 3)
    maps = maps + .15 * np.stack([blobs(rng, 200, 200, 18, .7).ravel() for _ in range(3)])
    spectra = dyes(axis, (518, 540, 575), 17, 1.8)
    return 200, 200, em(axis), maps, spectra, counted(rng, maps, spectra, 500), np.uint16


@a_set
def rare4(rng):
    axis, maps = np.linspace(480, 680, 14), stains(rng, 220, 220, 4)
    maps[2] = puncta(rng, 220, 220, 9, 1.5).ravel()
    spectra = dyes(axis, (500, 545, 590, 640), 15)
    return 220, 220, em(axis), maps, spectra, counted(rng, maps, spectra, 500), np.uint16


@a_set
def shaded3(rng):
    axis, maps = np.linspace(510, 660, 11), stains(rng, 210, 210, 3)
    maps = maps * np.exp(.5 * field(rng, 210, 210, 40).ravel()).clip(.3, 3)
    spectra = dyes(axis, (530, 565, 610), 15)
    return 210, 210, em(axis), maps, spectra, counted(rng, maps, spectra, 400, read=4), np.uint16


@a_set
def clipped4(rng):
    axis, maps = np.linspace(500, 650, 9), stains(rng, 200, 200, 4)
    spectra = dyes(axis, (515, 548, 585, 625), 14)
    images = maps.T @ spectra
    images = images / images.max() * 200 + rng.normal(0, 6, images.shape)
    return 200, 200, em(axis), maps, spectra, images.clip(0), np.uint16


@a_set
def mixed4(rng):
    axis, maps = np.linspace(450, 900, 40), ground(rng, 90, 90, 4, 6, 1)
    spectra = np.stack([.1 + .3 * (axis - 450) / 450, .05 + .45 / (1 + np.exp(-(axis - 720) / 15)) + lines(
        axis, (.07, 550, 25)), .35 - .2 * lines(axis, (1, 680, 50)), .12 + lines(axis, (.3, 580, 60))])
    images = maps.T @ spectra + rng.normal(0, .003, (maps.shape[1], axis.size))
    return 90, 90, em(axis), maps, spectra, images, np.float32


@a_set
def absorbance3(rng):
    spectra = np.array([[.65, .7, .29, .2, .1], [.07, .99, .11, .05, .02], [.27, .57, .78, .5, .3]])
    maps = stains(rng, 200, 240, 3)
    images = maps.T @ spectra
    images = images / images.max() + rng.normal(0, .01, images.shape)
    return 200, 240, em([420, 500, 560, 620, 680]), maps, spectra, images, np.float32


@a_set
def tissue4(rng):
    axis, maps = np.linspace(500, 720, 20), stains(rng, 200, 200, 4)
    maps[0] = .2 + .3 * blobs(rng, 200, 200, 20, .7).ravel() + .2 * nuclei(rng, 200, 200, 20, 10).ravel()
    spectra = np.stack([bell(axis, 540, 50, 2), bell(axis, 530, 14), bell(axis, 590, 15), bell(axis, 650, 16)])
    return 200, 200, em(axis), maps, spectra, counted(rng, maps, spectra, 800, read=3), np.uint16


@a_set
def bright2(rng):
    axis, maps = np.linspace(520, 640, 5), stains(rng, 160, 160, 2) + .02
    spectra = dyes(axis, (535, 575), 18, 2)
    return 160, 160, em(axis), maps, spectra, counted(rng, maps, spectra, 20000, read=5), np.uint16


@a_set
def cells5(rng):
    axis, cell = np.linspace(420, 700, 20), nuclei(rng, 200, 200, 25, 14).ravel()
    maps = stains(rng, 200, 200, 5) * (.1 + cell)
    spectra = dyes(axis, (450, 500, 545, 590, 640), 17)
    return 200, 200, em(axis), maps, spectra, counted(rng, maps, spectra, 600), np.uint16


@a_set
def together3(rng):
    axis, cell = np.linspace(500, 660, 10), nuclei(rng, 160, 160, 18, 16)
    shared = field(rng, 160, 160, 4)
    maps = np.stack([(cell * np.exp(.44 * shared + .54 * field(rng, 160, 160, 4))).ravel() for _ in range(3)])
    spectra = dyes(axis, (515, 555, 605), 16)
    return 160, 160, em(axis), maps, spectra, counted(rng, maps, spectra, 600), np.uint16


OFFSET = ("confocal3", "offset3")
FURTHER = ("sparse6", "overlap3", "rare4", "shaded3", "clipped4", "mixed4", "absorbance3", "tissue4", "bright2",
           "cells5")


# Peers

def fit(images, spectra, rounds=300):
    """Non-negative amounts of known spectra, by projected gradients with momentum."""
    gram, target = spectra @ spectra.T, spectra @ images.T
    step = 1 / np.linalg.eigvalsh(gram)[-1]
    maps = np.clip(np.linalg.lstsq(spectra.T, images.T, rcond=None)[0], 0, None)
    ahead, momentum = maps, 1.0
    for _ in range(rounds):
        new = np.clip(ahead - step * (gram @ ahead - target), 0, None)
        after = (1 + np.sqrt(1 + 4 * momentum * momentum)) / 2
        ahead, maps, momentum = new + (momentum - 1) / after * (new - maps), new, after
    return maps


def singular_start(images, number):
    u, s, v = np.linalg.svd(images, full_matrices=False)
    maps, spectra = [np.sqrt(s[0]) * np.abs(u[:, 0])], [np.sqrt(s[0]) * np.abs(v[0])]
    for k in range(1, number):
        parts = [(np.clip(sign * u[:, k], 0, None), np.clip(sign * v[k], 0, None)) for sign in (1, -1)]
        a, b = max(parts, key=lambda part: np.linalg.norm(part[0]) * np.linalg.norm(part[1]))
        size = np.sqrt(s[k] * np.linalg.norm(a) * np.linalg.norm(b))
        maps.append(size * a / np.linalg.norm(a))
        spectra.append(size * b / np.linalg.norm(b))
    fill = images.mean()
    filled = [np.where(np.stack(part) == 0, fill * 1e-2, np.stack(part)) for part in (maps, spectra)]
    return filled[0].T, filled[1]


def by_columns(images, maps, spectra, rounds=500):
    last = None
    for _ in range(rounds):
        for one, gram, target in ((maps.T, spectra @ spectra.T, spectra @ images.T), (spectra, None, None)):
            if gram is None:
                gram, target = maps.T @ maps, maps.T @ images
            for k in range(len(one)):
                one[k] = np.clip(one[k] + (target[k] - gram[k] @ one) / max(gram[k, k], 1e-300), 1e-16, None)
        error = np.linalg.norm(images - maps @ spectra)
        if last is not None and last - error < 1e-5 * last:
            break
        last = error
    return maps.T, spectra, error


def for_counts(images, number, rounds=300):
    images = images + 1e-9
    maps, spectra = singular_start(images, number)
    for _ in range(rounds):
        maps *= (images / (maps @ spectra)) @ spectra.T / spectra.sum(1)
        spectra *= maps.T @ (images / (maps @ spectra)) / np.maximum(maps.sum(0)[:, None], 1e-300)
    return maps.T, spectra


def purest(images, number):
    u, s, v = np.linalg.svd(images, full_matrices=False)
    rows = (u[:, :number] * s[:number]) @ v[:number]
    sizes = np.linalg.norm(rows, axis=1)
    rows = rows[sizes > .1 * sizes.max()]
    rows = rows / np.maximum(rows.sum(1, keepdims=True), 1e-12)
    left, chosen = rows.copy(), []
    for _ in range(number):
        chosen.append(int(np.argmax((left ** 2).sum(1))))
        direction = left[chosen[-1]] / np.linalg.norm(left[chosen[-1]])
        left = left - np.outer(left @ direction, direction)
    return np.clip(rows[chosen], 0, None)


def alternating(images, spectra, rounds=60):
    for _ in range(rounds):
        maps = np.clip(np.linalg.lstsq(spectra.T, images.T, rcond=None)[0], 0, None)
        spectra = np.clip(np.linalg.lstsq(maps.T, images, rcond=None)[0], 1e-12, None)
        spectra = spectra / spectra.max(1, keepdims=True)
    return fit(images, spectra), spectra


def peers(images, number, rng):
    images = np.clip(images, 0, None)
    images = images / images.max()
    answers = {"columns": by_columns(images, *singular_start(images, number))[:2]}
    starts = [(rng.uniform(0, 1, (len(images), number)), rng.uniform(0, 1, (number, images.shape[1])))
              for _ in range(3)]
    answers["random"] = min((by_columns(images, *start) for start in starts), key=lambda answer: answer[2])[:2]
    answers["counts"] = for_counts(images, number)
    pure = purest(images, number)
    answers["pure"] = (fit(images, pure), pure)
    answers["alternating"] = alternating(images, pure)
    return answers


# Measures

def scores(maps, spectra, found_maps, found_spectra):
    """Mean error of the matched maps, and mean angle of their spectra in degrees."""
    squares = (found_maps ** 2).sum(1)
    part = np.divide((maps @ found_maps.T) ** 2, np.maximum(squares, 1e-300)) / (maps ** 2).sum(1)[:, None]
    errors = np.sqrt(np.clip(1 - np.where(squares > 0, part, 0), 0, 1))
    order = min(itertools.permutations(range(len(maps))), key=lambda o: sum(errors[i, j] for i, j in enumerate(o)))
    sizes = np.linalg.norm(spectra, axis=1), np.maximum(np.linalg.norm(found_spectra, axis=1), 1e-300)
    cosines = [spectra[i] @ found_spectra[j] / sizes[0][i] / sizes[1][j] for i, j in enumerate(order)]
    return float(np.mean([errors[i, j] for i, j in enumerate(order)])), float(
        np.mean(np.degrees(np.arccos(np.clip(cosines, -1, 1)))))


def write_images(folder, cube, names, kind):
    folder.mkdir(parents=True)
    if np.issubdtype(kind, np.integer):
        cube = np.clip(np.rint(cube), max(0, np.iinfo(kind).min), np.iinfo(kind).max)
    for j, name in enumerate(names):
        tifffile.imwrite(folder / f"{name}.tif", cube[:, :, j].astype(kind))


def make(place, name, seed=0):
    """The truth of a set, whose images are written where they are not yet."""
    rows, columns, names, maps, spectra, images, kind = SETS[name](
        np.random.default_rng(1 + list(SETS).index(name) + 1000 * seed))
    if not (place / "images").exists():
        write_images(place / "images", images.reshape(rows, columns, -1), names, kind)
    return rows, columns, names, maps, spectra


def prepare(place, name, seed=0):
    """The truth of a set, what its files hold, and the scores of the peers."""
    rows, columns, names, maps, spectra = make(place, name, seed)
    held = np.stack([tifffile.imread(place / "images" / f"{n}.tif").astype(float).ravel() for n in names], 1)
    kept = place / "peers.json"
    if not kept.exists():
        found = peers(held, len(maps), np.random.default_rng(99))
        kept.write_text(json.dumps({peer: scores(maps, spectra, *answer) for peer, answer in found.items()}))
    return (rows, columns), maps, spectra, held, json.loads(kept.read_text())


def spectra_of(answer_folder, number):
    table = [line.split(",") for line in (answer_folder / "spectra.csv").read_text().splitlines()]
    return np.array([[float(x) for x in row[-number:]] for row in table[1:]]).T


def import_images(program, place):
    shutil.rmtree(place / "sequence", ignore_errors=True)
    subprocess.run([program, "import", place / "images", place / "sequence", "--quiet"], check=True)


def count(program, place, options):
    """Components above the noise that `spum pca` tells, at least, and at most; None where it tells none."""
    import_images(program, place)
    done = subprocess.run([program, "pca", place / "sequence", "--out", place / "pca", "--force", "--json"] + options,
                          stdout=subprocess.PIPE, check=True)
    answer = json.loads(done.stdout)
    keys = ("componentsAboveNoise", "componentsAboveNoiseLeast", "componentsAboveNoiseMost")
    return [answer[key] for key in keys] if keys[0] in answer else None


def print_counts(program, folder, chosen, seed, options):
    print("| set | images | components | counted | least | most |\n|---|---|---|---|---|---|")
    near, exact = 0, 0
    for name in chosen:
        place = place_of(folder, name, seed)
        spectra = make(place, name, seed)[-1]
        counted = count(program, place, options)
        cells = counted or ["unknown", "", ""]
        exact += counted is not None and counted[0] == len(spectra)
        near += counted is not None and abs(counted[0] - len(spectra)) <= 1
        print(f"| {name} | {spectra.shape[1]} | {len(spectra)} | " + " | ".join(str(cell) for cell in cells) + " |",
              flush=True)
    print(f"\n{exact} of {len(chosen)} exactly, {near} within one")


def unmix(program, place, number, options):
    import_images(program, place)
    done = subprocess.run([program, "unmix", place / "sequence", "--ncomponents", str(number), "--json"] + options,
                          stdout=subprocess.PIPE, check=False)
    if done.returncode != 0:
        return None
    answer = json.loads(done.stdout)
    folder = place / "sequence" / "unmixed-automatic"
    maps = np.stack([tifffile.imread(folder / component["map"]) for component in answer["components"]])
    return answer, np.nan_to_num(maps.astype(float)).reshape(number, -1), spectra_of(folder, number)


def place_of(folder, name, seed):
    return folder / (f"{name}-{seed}" if seed else name)


def main():
    words = sys.argv[1:]
    options = words[words.index("--") + 1:] if "--" in words else []
    words = words[:words.index("--")] if "--" in words else words
    seed = 0
    if "--seed" in words:
        at = words.index("--seed")
        seed = int(words[at + 1])
        words = words[:at] + words[at + 2:]
    only_count = "--count" in words
    words = [word for word in words if word != "--count"]
    program, folder, chosen = words[0], Path(words[1]), words[2:] or list(SETS)
    if only_count:
        print_counts(program, folder, chosen, seed, options)
        return
    ratios = {}
    print("| set | images | components | error | best peer | ratio | angle | best peer's | warnings |\n"
          "|---|---|---|---|---|---|---|---|---|")
    for name in chosen:
        place = place_of(folder, name, seed)
        _, maps, spectra, _, others = prepare(place, name, seed)
        found = unmix(program, place, len(maps), options)
        if found is None:
            print(f"| {name} | failed |", flush=True)
            continue
        ours = scores(maps, spectra, *found[1:])
        best = min(others, key=lambda peer: others[peer][0])
        angle = min(peer[1] for peer in others.values())
        ratios[name] = (ours[0] / others[best][0], ours[1] / angle)
        codes = ", ".join(warning["code"] for warning in found[0]["warnings"])
        print(f"| {name} | {spectra.shape[1]} | {len(maps)} | {ours[0]:.4f} | {others[best][0]:.4f} {best} | "
              f"{ratios[name][0]:.3f} | {ours[1]:.2f} | {angle:.2f} | {codes} |", flush=True)
    print()
    for what, group in (("all", list(SETS)), ("without those with an offset", [n for n in SETS if n not in OFFSET]),
                        ("of these the further ones", FURTHER)):
        told = [ratios[name] for name in group if name in ratios]
        if told:
            means = np.exp(np.mean(np.log(told), 0))
            print(f"{what}, {len(told)} sets: error {means[0]:.3f} and angle {means[1]:.3f} times those of the best "
                  "peer, as geometric means")


if __name__ == "__main__":
    main()
