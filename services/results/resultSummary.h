// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

struct ResultFacts;

// A result's facts as its folder and its command tell them.

// Of "summary.json"; `files` are those of the folder. Other programs and later commands read it: its keys stay. Parts
// of a whole are fractions from 0 to 1 throughout; docs/json.md has every key.
QJsonObject resultJson(const ResultFacts& facts, const QStringList& files);
// Of "summary.csv": a row a component, the facts of the run in every row, so that a table program can filter and join
// them. What is not known is an empty cell.
QByteArray resultCsv(const QJsonObject& summary);
// Its columns: keys of the object and of its components; of the warnings there are the codes.
QStringList resultCsvColumns();
// Its rows. Of an object that is no summary there are none.
QList<QStringList> resultCsvRows(const QJsonObject& summary);
// For people.
QString resultText(const ResultFacts& facts);
