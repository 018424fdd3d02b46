#include "support/MainWindowFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>

MainWindowFixture::MainWindowFixture()
{
    QDir().mkpath(programFolder());
    // The message file as shipped, so Italian texts are the real ones.
    QFile::copy(QStringLiteral(VIMORA_SOURCE_DIR "/resources/PRMSG"), programFolder() + "PRMSG");
    m_settings = std::make_unique<LoggingIniStore>(iniPath());
    state = std::make_unique<AppState>(*m_settings, messages);
    state->ProgramFolder = programFolder();
    context = std::make_unique<ViewerContext>(messages);
}

MainWindowFixture::~MainWindowFixture()
{
    if (m_window)
        close();
}

QString MainWindowFixture::makeFolder(const QString &relative) const
{
    const QString path = m_root.path() + '/' + relative;
    QDir().mkpath(path);
    return path;
}

void MainWindowFixture::makeFiles(const QString &folder, const QStringList &names) const
{
    for (const QString &name : names) {
        const QString path = folder + '/' + name;
        const QString suffix = name.section('.', -1).toLower();
        if (suffix == "gif") {
            // Qt writes no GIF: a 1 x 1 picture, byte by byte.
            QFile file(path);
            file.open(QIODevice::WriteOnly);
            file.write(QByteArray::fromHex("47494638396101000100800000ff000000000021f90401000000002c000000000100"
                                           "0100000202440100003b"));
        } else if (suffix == "bmp" || suffix == "jpg") {
            QImage picture(64 + int(name.size()), 48, QImage::Format_RGB32);
            picture.fill(QColor::fromHsv(int(qHash(name) % 360), 200, 200));
            picture.save(path, suffix.toUpper().toLatin1().constData());
        } else {
            QFile file(path);
            file.open(QIODevice::WriteOnly);
            file.write("not really a movie");
        }
    }
}

QString MainWindowFixture::makePicture(const QString &folder, const QString &name, QSize size) const
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    const QString path = folder + '/' + name;
    picture.save(path);
    return path;
}

frmMain &MainWindowFixture::start(const QString &commandLine)
{
    m_window = std::make_unique<frmMain>(*state, *context, prompts, launcher);
    if (beforeLoad)
        beforeLoad(*m_window);
    m_window->Form_Load(commandLine);
    QCoreApplication::processEvents();
    return *m_window;
}

void MainWindowFixture::close()
{
    m_window->close();
    m_window.reset();
    m_settings->flush();
}
