// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TalkingResponder.h"

#include "host/CORVPreference.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

// Answers of a user while it lives, and a folder for what he exports.
class Exports
{
public:
    Exports()
    {
        CORVPreference::setUsersPreferredFormat(QString());
        m_before = orv::setMessageResponder(std::make_unique<TalkingResponder>(m_talk));
    }
    ~Exports() { orv::setMessageResponder(std::move(m_before)); }
    Exports(const Exports&) = delete;
    Exports& operator=(const Exports&) = delete;

    QString path(const QString& strName) const { return m_folder.filePath(strName); }
    QByteArray bytes(const QString& strName) const
    {
        QFile file(path(strName));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    bool isEmpty() const { return QDir(m_folder.path()).isEmpty(); }

    Talk m_talk;

private:
    QTemporaryDir m_folder;
    std::unique_ptr<orv::MessageResponder> m_before;
};
