#include "settings/AtomicFile.h"

#include <QDir>
#include <QFileInfo>
#include <atomic>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<unsigned> g_tempCounter{0};

QString ErrnoText(int err) {
    return QString::fromLocal8Bit(std::strerror(err));
}

FileIdentity IdentityOf(const struct stat& st) {
    FileIdentity id;
    id.exists = true;
    id.device = st.st_dev;
    id.inode = st.st_ino;
    id.size = st.st_size;
    id.mtimeSec = st.st_mtim.tv_sec;
    id.mtimeNsec = st.st_mtim.tv_nsec;
    return id;
}

bool WriteAll(int fd, const char* data, qint64 size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, static_cast<size_t>(size));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += n;
        size -= n;
    }
    return true;
}

QString TempPrefix(const QString& path) {
    return QFileInfo(path).fileName() + QStringLiteral(".tmp.");
}

}  // namespace

FileIdentity StatFile(const QString& path) {
    struct stat st;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return {};
    return IdentityOf(st);
}

FileStatus ReadWholeFile(const QString& path, qint64 maxBytes, QByteArray* bytes,
                         FileIdentity* identity, QString* error) {
    bytes->clear();
    *identity = {};
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT)
            return FileStatus::Missing;
        *error = ErrnoText(errno);
        return FileStatus::Failed;
    }
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        *error = S_ISDIR(st.st_mode) ? QStringLiteral("it is a folder") : ErrnoText(errno);
        ::close(fd);
        return FileStatus::Failed;
    }
    *identity = IdentityOf(st);
    if (st.st_size > maxBytes) {
        *error = QStringLiteral("too large");
        ::close(fd);
        return FileStatus::Failed;
    }
    bytes->resize(static_cast<qsizetype>(st.st_size));
    qint64 done = 0;
    while (done < bytes->size()) {
        const ssize_t n =
            ::read(fd, bytes->data() + done, static_cast<size_t>(bytes->size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            *error = ErrnoText(errno);
            ::close(fd);
            return FileStatus::Failed;
        }
        if (n == 0)
            break;  // shrank while reading: take what is there
        done += n;
    }
    bytes->resize(static_cast<qsizetype>(done));
    ::close(fd);
    return FileStatus::Ok;
}

bool WriteFileAtomically(const QString& path, const QByteArray& bytes, FileIdentity* written,
                         QString* error) {
    const QFileInfo info(path);
    const QString temp = info.absolutePath() + u'/' + TempPrefix(path) +
                         QString::number(::getpid()) + u'.' +
                         QString::number(g_tempCounter.fetch_add(1, std::memory_order_relaxed));
    const QByteArray tempName = QFile::encodeName(temp);
    const int fd = ::open(tempName.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) {
        *error = ErrnoText(errno);
        return false;
    }
    struct stat st;
    if (!WriteAll(fd, bytes.constData(), bytes.size()) || ::fsync(fd) != 0 ||
        ::fstat(fd, &st) != 0) {
        *error = ErrnoText(errno);
        ::close(fd);
        ::unlink(tempName.constData());
        return false;
    }
    ::close(fd);
    if (::rename(tempName.constData(), QFile::encodeName(path).constData()) != 0) {
        *error = ErrnoText(errno);
        ::unlink(tempName.constData());
        return false;
    }
    // The folder is not flushed after the rename: that would double the cost
    // of every write, and a power cut can then at worst bring back the
    // previous file, whole.
    if (written)
        *written = IdentityOf(st);
    return true;
}

void RemoveStaleTemporaries(const QString& path) {
    const QFileInfo info(path);
    const QString prefix = TempPrefix(path);
    const QDir dir(info.absolutePath());
    const QStringList names = dir.entryList({prefix + u'*'}, QDir::Files | QDir::Hidden);
    for (const QString& name : names) {
        const QStringList parts = name.mid(prefix.size()).split(u'.');
        bool ok = false;
        const qint64 pid = parts.value(0).toLongLong(&ok);
        if (!ok || pid <= 0 || pid == ::getpid())
            continue;
        if (::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
            ::unlink(QFile::encodeName(dir.filePath(name)).constData());
    }
}
