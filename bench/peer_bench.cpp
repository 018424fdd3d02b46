// Vimora against the viewers people use, on one Xvfb screen in the same run:
// the time from a viewer's start to the first 24-megapixel picture's pixels
// on screen, its peak memory a second later, the time from a key press to
// the next picture's pixels, and how soon the picture of the last of 24 fast
// presses shows. The screen is polled, not the window title: titles are set
// before pictures are drawn.
#include "bench/BenchTable.h"

#include <QColor>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace {

constexpr int PictureCount = 26; // the first, one Next, then 24 held presses
constexpr int HeldPresses = 24;
constexpr int PressGapMs = 40;   // faster than any viewer decodes 24 MP
constexpr int ScreenWidth = 1920;
constexpr int ScreenHeight = 1080;
constexpr int TimeoutMs = 20000;

// Each picture is a noisy field of its own hue, so any visible part of it
// (the top-left corner at actual size, the whole at fit) tells which it is.
int hueOf(int index)
{
    return index * 360 / PictureCount;
}

QString makePictures(const QString &folder)
{
    QDir().mkpath(folder);
    quint32 seed = 12345;
    for (int index = 0; index < PictureCount; ++index) {
        const QString path = QStringLiteral("%1/peer-%2.jpg").arg(folder).arg(index, 2, 10, QLatin1Char('0'));
        if (QFile::exists(path))
            continue;
        QImage picture(6000, 4000, QImage::Format_RGB32);
        const QColor base = QColor::fromHsv(hueOf(index), 255, 230);
        for (int y = 0; y < picture.height(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
            for (int x = 0; x < picture.width(); ++x) {
                seed = seed * 1664525u + 1013904223u;
                const int noise = int(seed >> 27) - 16; // -16 .. 15
                line[x] = qRgb(std::clamp(base.red() + noise, 0, 255), std::clamp(base.green() + noise, 0, 255),
                               std::clamp(base.blue() + noise, 0, 255));
            }
        }
        QImageWriter writer(path + QStringLiteral(".part"), "jpeg");
        writer.setQuality(90);
        if (!writer.write(picture) || !QFile::rename(path + QStringLiteral(".part"), path))
            return {};
    }
    return folder;
}

QString pictureName(const QString &folder, int index)
{
    return QStringLiteral("%1/peer-%2.jpg").arg(folder).arg(index, 2, 10, QLatin1Char('0'));
}

// Reads a few rows of the screen and says which picture covers them.
class ScreenWatch {
public:
    explicit ScreenWatch(const QByteArray &display)
    {
        m_connection = xcb_connect(display.constData(), nullptr);
        if (xcb_connection_has_error(m_connection))
            return;
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    }
    ~ScreenWatch() { xcb_disconnect(m_connection); }

    bool ok() const { return m_root != 0; }

    // The picture most of the sampled pixels belong to, or -1.
    int shownPicture()
    {
        int counts[PictureCount] = {};
        for (int row = 1; row <= 7; ++row) {
            const auto cookie = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, 0,
                                              int16_t(row * ScreenHeight / 8), ScreenWidth, 1, ~0u);
            std::unique_ptr<xcb_get_image_reply_t, decltype(&free)> reply(
                xcb_get_image_reply(m_connection, cookie, nullptr), &free);
            if (!reply || xcb_get_image_data_length(reply.get()) < ScreenWidth * 4)
                continue;
            const uint8_t *pixels = xcb_get_image_data(reply.get());
            for (int x = 0; x < ScreenWidth; x += 2) {
                const QColor colour(pixels[4 * x + 2], pixels[4 * x + 1], pixels[4 * x]);
                if (colour.hsvSaturation() < 150 || colour.value() < 120)
                    continue;
                const int index = int(std::lround(colour.hsvHue() * PictureCount / 360.0)) % PictureCount;
                ++counts[index];
            }
        }
        const auto best = std::max_element(std::begin(counts), std::end(counts));
        return *best >= 300 ? int(best - std::begin(counts)) : -1;
    }

    // Milliseconds until the picture shows, or nullopt after the time-out.
    std::optional<double> waitFor(int index, const QElapsedTimer &since)
    {
        while (since.elapsed() < TimeoutMs) {
            if (shownPicture() == index)
                return since.nsecsElapsed() / 1e6;
            QThread::usleep(1500);
        }
        return std::nullopt;
    }

private:
    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_root = 0;
};

// Key presses sent straight to the X server (XTEST), so that a press is
// timed from the moment it is made, not from a helper program's start.
class KeyPresser {
public:
    explicit KeyPresser(const QByteArray &display)
    {
        m_connection = xcb_connect(display.constData(), nullptr);
        if (xcb_connection_has_error(m_connection))
            return;
        const xcb_setup_t *setup = xcb_get_setup(m_connection);
        m_first = setup->min_keycode;
        const int count = setup->max_keycode - setup->min_keycode + 1;
        std::unique_ptr<xcb_get_keyboard_mapping_reply_t, decltype(&free)> mapping(
            xcb_get_keyboard_mapping_reply(m_connection,
                                           xcb_get_keyboard_mapping(m_connection, m_first, uint8_t(count)), nullptr),
            &free);
        if (!mapping)
            return;
        const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
        const int perCode = mapping->keysyms_per_keycode;
        m_symbols.assign(symbols, symbols + count * perCode);
        m_perCode = perCode;
    }
    ~KeyPresser() { xcb_disconnect(m_connection); }

    // The key of an X keysym name the bench uses; 0 when unknown.
    xcb_keycode_t keyOf(const QString &name) const
    {
        static const std::map<QString, xcb_keysym_t> symbols{
            {QStringLiteral("Down"), 0xff54}, {QStringLiteral("Right"), 0xff53}, {QStringLiteral("n"), 0x006e}};
        const auto symbol = symbols.find(name);
        if (symbol == symbols.end() || m_perCode == 0)
            return 0;
        for (size_t i = 0; i < m_symbols.size(); ++i)
            if (m_symbols[i] == symbol->second)
                return xcb_keycode_t(m_first + int(i) / m_perCode);
        return 0;
    }

    // Pressed and released; returns once the server has taken both.
    void press(xcb_keycode_t key)
    {
        xcb_test_fake_input(m_connection, XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_test_fake_input(m_connection, XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }

private:
    xcb_connection_t *m_connection = nullptr;
    std::vector<xcb_keysym_t> m_symbols;
    int m_first = 0;
    int m_perCode = 0;
};

struct Viewer {
    QString name;
    QString program;
    std::function<QStringList(const QString &folder)> arguments;
    QString nextKey;
    QStringList modeKeys = {}; // pressed after the first picture, to change mode
    bool returningVimoraUser = false; // past the first start's language question
};

double peakMegabytes(qint64 pid)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return 0;
}

class Desktop {
public:
    bool start()
    {
        m_xvfb.setProgram(QStringLiteral("Xvfb"));
        m_xvfb.setArguments({QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                             QStringLiteral("0"), QStringLiteral("%1x%2x24").arg(ScreenWidth).arg(ScreenHeight),
                             QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        m_xvfb.start();
        if (!m_xvfb.waitForReadyRead(10000))
            return false;
        m_display = ":" + m_xvfb.readLine().trimmed();
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(m_display));
        m_environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        m_environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        // A session bus, as on a desktop: without one eog and Qt wait for it.
        m_bus.setProgram(QStringLiteral("dbus-daemon"));
        m_bus.setArguments({QStringLiteral("--session"), QStringLiteral("--nofork"),
                            QStringLiteral("--print-address=1")});
        m_bus.start();
        if (m_bus.waitForReadyRead(5000))
            m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                                 QString::fromUtf8(m_bus.readLine().trimmed()));
        m_windowManager.setProgram(QStringLiteral("openbox"));
        m_windowManager.setProcessEnvironment(m_environment);
        m_windowManager.start();
        m_windowManager.waitForStarted();
        QThread::msleep(500); // openbox takes the screen; nothing to wait on from here
        return true;
    }
    ~Desktop()
    {
        for (QProcess *process : {&m_windowManager, &m_bus, &m_xvfb}) {
            process->terminate();
            if (!process->waitForFinished(3000))
                process->kill();
            process->waitForFinished(1000);
        }
    }

    QByteArray display() const { return m_display; }
    QProcessEnvironment environment() const { return m_environment; }

    // Keys with modifiers, untimed (the mode keys).
    void press(const QStringList &keys) const
    {
        QProcess xdotool;
        xdotool.setProcessEnvironment(m_environment);
        xdotool.start(QStringLiteral("xdotool"), QStringList{QStringLiteral("key")} + keys);
        xdotool.waitForFinished(30000);
    }

private:
    QProcess m_xvfb, m_bus, m_windowManager;
    QByteArray m_display;
    QProcessEnvironment m_environment;
};

struct Measure {
    std::optional<double> firstMs;
    double peakMb = 0;
    std::optional<double> nextMs;
    std::optional<double> heldMs; // last press to its picture
};

Measure measure(const Desktop &desktop, const Viewer &viewer, const QString &folder)
{
    Measure result;
    QTemporaryDir home;
    QProcessEnvironment environment = desktop.environment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path() + QStringLiteral("/config"));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.path() + QStringLiteral("/cache"));
    if (viewer.returningVimoraUser) {
        QDir().mkpath(home.path() + QStringLiteral("/config/Vimora"));
        QFile settings(home.path() + QStringLiteral("/config/Vimora/Vimora.ini"));
        if (!settings.open(QIODevice::WriteOnly) || settings.write("[UserDef]\nLanguage=EN\n") < 0)
            return result;
    }
    ScreenWatch screen(desktop.display());
    if (!screen.ok())
        return result;

    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    process.start(viewer.program, viewer.arguments(folder));
    result.firstMs = screen.waitFor(0, clock);
    if (result.firstMs) {
        QThread::msleep(1000);
        result.peakMb = peakMegabytes(process.processId());
        for (const QString &key : viewer.modeKeys) {
            desktop.press({key});
            QThread::msleep(500);
        }
        QThread::msleep(1500);
        KeyPresser keys(desktop.display());
        const xcb_keycode_t next = keys.keyOf(viewer.nextKey);
        if (next == 0)
            return result;
        clock.restart();
        keys.press(next);
        result.nextMs = screen.waitFor(1, clock);
        if (result.nextMs) {
            QThread::msleep(1000);
            for (int press = 0; press < HeldPresses; ++press) {
                if (press > 0)
                    QThread::msleep(PressGapMs);
                clock.restart(); // the last press counts
                keys.press(next);
            }
            result.heldMs = screen.waitFor(1 + HeldPresses, clock);
        }
    }
    process.terminate();
    if (!process.waitForFinished(3000))
        process.kill();
    process.waitForFinished(1000);
    return result;
}

std::optional<double> median(std::vector<double> values)
{
    if (values.empty())
        return std::nullopt;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool installed(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

} // namespace

void peerBench(BenchTable &table)
{
    if (!installed(QStringLiteral("Xvfb")) || !installed(QStringLiteral("xdotool"))) {
        std::fprintf(stderr, "peers: Xvfb and xdotool are needed; skipped\n");
        return;
    }
    const QString folder = makePictures(QCoreApplication::applicationDirPath() + QStringLiteral("/peer-pictures"));
    if (folder.isEmpty())
        return;
    const auto allFiles = [](const QString &folder) {
        QStringList files;
        for (int index = 0; index < PictureCount; ++index)
            files << pictureName(folder, index);
        return files;
    };
    const auto firstFile = [](const QString &folder) { return QStringList{pictureName(folder, 0)}; };
    const QString vimora = QCoreApplication::applicationDirPath() + QStringLiteral("/vimora");
    QList<Viewer> viewers{
        {QStringLiteral("Vimora at actual size"), vimora, firstFile, QStringLiteral("Down"), {}, true},
        {QStringLiteral("Vimora fitted"), vimora, firstFile, QStringLiteral("Down"), {QStringLiteral("alt+f")}, true},
        {QStringLiteral("Vimora zoomed in"), vimora, firstFile, QStringLiteral("Down"), {QStringLiteral("KP_Add")},
         true},
    };
    const QList<Viewer> peers{
        {QStringLiteral("feh"), QStringLiteral("feh"),
         [&](const QString &folder) {
             return QStringList{QStringLiteral("--sort"), QStringLiteral("filename"), QStringLiteral("--start-at"),
                                pictureName(folder, 0), folder};
         },
         QStringLiteral("Right")},
        {QStringLiteral("nsxiv"), QStringLiteral("nsxiv"), allFiles, QStringLiteral("n")},
        {QStringLiteral("qimgv"), QStringLiteral("qimgv"), firstFile, QStringLiteral("Right")},
        {QStringLiteral("eog"), QStringLiteral("eog"), firstFile, QStringLiteral("Right")},
    };
    QStringList peerNames;
    for (const Viewer &peer : peers)
        if (installed(peer.program)) {
            viewers << peer;
            peerNames << peer.name;
        }
    if (!installed(vimora) || peerNames.isEmpty()) {
        std::fprintf(stderr, "peers: needs the vimora program beside the bench and at least one peer\n");
        return;
    }

    Desktop desktop;
    if (!desktop.start()) {
        std::fprintf(stderr, "peers: Xvfb did not start\n");
        return;
    }
    std::map<QString, std::vector<double>> first, peak, next, held;
    const int runs = benchRuns(3);
    for (int run = 0; run < runs; ++run)
        for (const Viewer &viewer : std::as_const(viewers)) { // interleaved, so drift hits all alike
            const Measure m = measure(desktop, viewer, folder);
            if (m.firstMs) {
                first[viewer.name].push_back(*m.firstMs);
                peak[viewer.name].push_back(m.peakMb);
            }
            if (m.nextMs)
                next[viewer.name].push_back(*m.nextMs);
            if (m.heldMs)
                held[viewer.name].push_back(*m.heldMs);
        }

    // The fastest (or lightest) peer of a measure, by its median.
    const auto bestPeer = [&](std::map<QString, std::vector<double>> &values) {
        std::optional<std::pair<QString, double>> best;
        for (const QString &name : std::as_const(peerNames))
            if (const auto value = median(values[name]); value && (!best || *value < best->second))
                best = {{name, *value}};
        return best;
    };
    const auto addRow = [&](const QString &what, const QString &vimoraName,
                            std::map<QString, std::vector<double>> &values, const QString &unit,
                            const QString &referenceWhat) {
        const auto ours = median(values[vimoraName]);
        const auto best = bestPeer(values);
        if (!ours || !best) {
            std::fprintf(stderr, "peers: no figure for \"%s\"\n", qPrintable(what));
            return;
        }
        table.add({what, referenceWhat.arg(best->first), *ours, best->second, unit});
    };
    const QString actual = viewers[0].name;
    addRow(QStringLiteral("first 24 MP picture on screen, from start"), actual, first, QStringLiteral("ms"),
           QStringLiteral("fastest peer (%1), same file"));
    addRow(QStringLiteral("peak memory 1 s after the first picture"), actual, peak, QStringLiteral("MB"),
           QStringLiteral("lightest peer (%1)"));
    for (int mode = 0; mode < 3; ++mode) {
        addRow(QStringLiteral("Next on screen, %1").arg(viewers[mode].name), viewers[mode].name, next,
               QStringLiteral("ms"), QStringLiteral("fastest peer (%1)"));
        addRow(QStringLiteral("last of 24 presses 40 ms apart on screen, %1").arg(viewers[mode].name),
               viewers[mode].name, held, QStringLiteral("ms"), QStringLiteral("fastest peer (%1)"));
    }
    // Every viewer's own figures, for the README and the notes.
    for (const Viewer &viewer : std::as_const(viewers))
        std::fprintf(stderr, "peers: %-22s first %6.0f ms  peak %5.0f MB  next %6.0f ms  held %6.0f ms\n",
                     qPrintable(viewer.name), median(first[viewer.name]).value_or(-1),
                     median(peak[viewer.name]).value_or(-1), median(next[viewer.name]).value_or(-1),
                     median(held[viewer.name]).value_or(-1));
}
