#pragma once

#include "core/MessageCatalogue.h"
#include "files/FileOperations.h"
#include "support/FakeSeams.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Whole files written and read back by the file-operation tests.
inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

// "<missing>" for a file that is not there, so a comparison says so.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// A temporary root for folders, scripted prompts, and the file context the
// file operations take; it writes down which paths players let go of.
struct FileChoreFixture : ::testing::Test {
    QTemporaryDir root;
    ScriptedPrompts prompts;
    MessageCatalogue messages;
    QStringList released;
    FileContext context{prompts, messages, [this](const QString &path) { released.append(path); }, {}};

    QString folder(const QString &name)
    {
        const QString path = root.path() + '/' + name;
        QDir().mkpath(path);
        return path;
    }
};
