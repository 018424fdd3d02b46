#include "platform/MetafileHelper.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

extern char **environ;

namespace MetafileHelper {
namespace {

// Waits for the socket to be ready; false once the time is up.
bool waitFor(int socket, short events, const QDeadlineTimer &deadline)
{
    for (;;) {
        pollfd ready{socket, events, 0};
        const int count = ::poll(&ready, 1, int(qMax<qint64>(0, deadline.remainingTime())));
        if (count < 0 && errno == EINTR)
            continue;
        return count > 0;
    }
}

bool sendAll(int socket, const QByteArray &bytes, const QDeadlineTimer &deadline)
{
    const char *data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        if (!waitFor(socket, POLLOUT, deadline))
            return false;
        const ssize_t sent = ::send(socket, data, size_t(left), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (sent <= 0)
            return false; // the helper is gone
        data += sent;
        left -= sent;
    }
    return true;
}

QByteArray receive(int socket, qint64 length, const QDeadlineTimer &deadline)
{
    QByteArray bytes(qsizetype(length), Qt::Uninitialized);
    char *into = bytes.data();
    qint64 left = length;
    while (left > 0) {
        if (!waitFor(socket, POLLIN, deadline))
            return {};
        const ssize_t got = ::recv(socket, into, size_t(left), MSG_DONTWAIT);
        if (got < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (got <= 0)
            return {}; // ended without a whole answer
        into += got;
        left -= got;
    }
    return bytes;
}

// Started with a clean signal state and nothing open but the socket, which
// is its standard input and output; its complaints go nowhere.
pid_t start(const char *const arguments[], int socket)
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, socket, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    sigset_t none;
    sigset_t every;
    sigemptyset(&none);
    sigfillset(&every);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &every);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    pid_t child = -1;
    const int failed = ::posix_spawn(&child, arguments[0], &actions, &attributes,
                                     const_cast<char *const *>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return failed ? -1 : child;
}

} // namespace

QString program()
{
    static const QString found = [] {
        const QString besideUs = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath()
            + QStringLiteral("/vimora-metafile");
        return QFileInfo(besideUs).isExecutable() ? besideUs : QStringLiteral(VIMORA_LIBEXEC_DIR "/vimora-metafile");
    }();
    return found;
}

std::optional<MetafileAnswer::Drawn> draw(Kind kind, const QByteArray &file, const QSize &bound, int timeLimitMs)
{
    const QDeadlineTimer deadline(timeLimitMs);
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return std::nullopt;
    const QByteArray path = QFile::encodeName(program());
    const QByteArray width = QByteArray::number(bound.width());
    const QByteArray height = QByteArray::number(bound.height());
    const QByteArray limit = QByteArray::number(timeLimitMs);
    const char *const kindName = kind == Kind::Wmf   ? "wmf"
                                 : kind == Kind::Emf ? "emf"
                                 : kind == Kind::Svg ? "svg"
                                                     : "svgfill";
    const char *const arguments[] = {path.constData(), kindName, width.constData(),
                                     height.constData(), limit.constData(), nullptr};
    const pid_t child = start(arguments, ends[1]);
    ::close(ends[1]);
    const int socket = ends[0];

    std::optional<MetafileAnswer::Drawn> drawn;
    if (child > 0 && sendAll(socket, file, deadline) && ::shutdown(socket, SHUT_WR) == 0) {
        const auto header = MetafileAnswer::readHeader(receive(socket, MetafileAnswer::HeaderBytes, deadline), bound,
                                                       kind == Kind::SvgFill);
        if (header) {
            const QImage picture = MetafileAnswer::readPixels(*header, receive(socket, header->pixelBytes(), deadline));
            if (!picture.isNull())
                drawn = MetafileAnswer::Drawn{picture, header->naturalSize};
        }
    }
    ::close(socket);
    if (child > 0) {
        ::kill(child, SIGKILL); // harmless once it has exited: it stays ours until reaped
        while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    return drawn;
}

} // namespace MetafileHelper
