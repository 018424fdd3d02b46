#pragma once

#include <QFile>
#include <QString>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// A named pipe: opening it for reading waits until a writer comes, like a
// file on a hung network share. Letting go opens and closes the writing end.
struct HangingFile {
    explicit HangingFile(const QString &path) : path(path)
    {
        made = ::mkfifo(QFile::encodeName(path).constData(), 0600) == 0;
    }
    void letGo() const
    {
        const int writer = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_NONBLOCK);
        if (writer >= 0)
            ::close(writer);
    }
    ~HangingFile()
    {
        // Until the reader gives up, which is at once after the writer closes;
        // a reader left behind would wake up after the application is gone.
        for (int i = 0; i < 200 && made; ++i) {
            letGo();
            ::usleep(5000);
        }
    }
    QString path;
    bool made = false;
};
