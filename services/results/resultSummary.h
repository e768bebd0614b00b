// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

struct ResultFacts;

// A result's facts as its folder and its command tell them.

// Of "summary.json"; `files` are those of the folder. Other programs and later commands read it: its keys stay.
QJsonObject resultJson(const ResultFacts& facts, const QStringList& files);
// Of "summary.csv": a row a component, the facts of the run in every row, so that a table program can filter and join
// them. A number that cannot be had is an empty cell.
QByteArray resultCsv(const ResultFacts& facts);
// Its columns.
QStringList resultCsvColumns();
// For people.
QString resultText(const ResultFacts& facts);
