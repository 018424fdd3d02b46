// vimora-metafile: draws one Windows metafile or SVG drawing read from
// standard input and writes the picture to standard output as MetafileAnswer
// describes.
//
//   vimora-metafile wmf|emf|svg|svgfill <largest width> <largest height> <time limit in ms>
//
// svgfill draws the drawing as large as fits, past its natural size.
//
// Vimora starts it for every metafile (see MetafileHelper), so it limits
// itself before it reads a byte of the file.

#include "platform/EmfRenderer.h"
#include "platform/MetafileAnswer.h"
#include "platform/SvgRenderer.h"
#include "platform/WmfRenderer.h"

#include <QGuiApplication>

#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr qint64 LargestFile = 256LL * 1024 * 1024;
constexpr rlim_t AddressSpace = 2ULL * 1024 * 1024 * 1024; // on top of Qt's own
constexpr rlim_t OpenFiles = 128; // fonts and Qt's plugins

void limit(int resource, rlim_t value)
{
    const rlimit bound{value, value};
    ::setrlimit(resource, &bound);
}

void limitBeforeStarting(int timeLimitMs)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() == 1)
        std::_Exit(1); // Vimora went before we could follow it
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_NOFILE, OpenFiles);
    // Writes no file: a font cache it would refresh is simply not written.
    ::signal(SIGXFSZ, SIG_IGN);
    limit(RLIMIT_FSIZE, 0);
    const rlim_t seconds = rlim_t(timeLimitMs / 1000 + 1);
    const rlimit cpu{seconds, seconds + 1};
    ::setrlimit(RLIMIT_CPU, &cpu);
}

// Once Qt has started, so that its libraries do not count.
void limitMemory()
{
    if (FILE *statm = std::fopen("/proc/self/statm", "r")) {
        unsigned long pages = 0;
        if (std::fscanf(statm, "%lu", &pages) == 1)
            limit(RLIMIT_AS, rlim_t(pages) * rlim_t(::sysconf(_SC_PAGESIZE)) + AddressSpace);
        std::fclose(statm);
    }
}

QByteArray readInput()
{
    QByteArray bytes;
    char chunk[65536];
    for (;;) {
        const ssize_t got = ::read(STDIN_FILENO, chunk, sizeof chunk);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 || bytes.size() + got > LargestFile)
            return {};
        if (got == 0)
            return bytes;
        bytes.append(chunk, got);
    }
}

bool writeAll(const QByteArray &bytes)
{
    const char *data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, data, size_t(left));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        left -= written;
    }
    return true;
}

int positive(const char *text)
{
    const long value = std::strtol(text, nullptr, 10);
    return value > 0 && value <= 1'000'000 ? int(value) : 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 5)
        return 2;
    const QByteArray kind = argv[1];
    const QSize bound(positive(argv[2]), positive(argv[3]));
    const int timeLimitMs = positive(argv[4]);
    if ((kind != "wmf" && kind != "emf" && kind != "svg" && kind != "svgfill") || bound.isEmpty() || timeLimitMs == 0)
        return 2;
    limitBeforeStarting(timeLimitMs);

    // Fonts need a GUI application; no screen is drawn on.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QGuiApplication application(argc, argv);
    limitMemory();

    const QByteArray file = readInput();
    QImage picture;
    QSize naturalSize;
    if (kind == "wmf") {
        const WmfRenderer::Recording recording = WmfRenderer::record(file, bound, timeLimitMs);
        picture = WmfRenderer::paint(recording);
        naturalSize = recording.naturalSize;
    } else if (kind == "svg" || kind == "svgfill") {
        const SvgRenderer::Drawn drawn
            = SvgRenderer::paint(file, bound, kind == "svg" ? SvgRenderer::Fit::ShrinkOnly : SvgRenderer::Fit::Fill);
        picture = drawn.picture;
        naturalSize = drawn.naturalSize;
    } else {
        const EmfRenderer::Conversion conversion = EmfRenderer::convert(file);
        picture = EmfRenderer::paint(conversion, bound);
        naturalSize = conversion.naturalSize;
    }
    if (picture.isNull())
        return 1;
    return writeAll(MetafileAnswer::encode(picture, naturalSize)) ? 0 : 1;
}
