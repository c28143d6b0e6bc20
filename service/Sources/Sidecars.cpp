// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/Sidecars.h"

#include "Subtitles/CueReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace murvo::service {

namespace {

// The longest films' subtitles are below 1 MB; a VobSub picture file, which cannot be used, is several.
constexpr qint64 largestSidecarBytes = 8LL * 1024 * 1024;
constexpr int mostSidecars = 64;
// What is read of a larger file, only to tell whether it holds pictures.
constexpr qint64 signatureBytes = 32;

class FileDescriptor {
  public:
    explicit FileDescriptor(int descriptor)
        : _descriptor(descriptor) {}
    ~FileDescriptor() {
        if (_descriptor >= 0)
            ::close(_descriptor);
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    [[nodiscard]] int get() const { return _descriptor; }

  private:
    int _descriptor;
};

// Asks the open file itself where it lies, so that no link can be changed between the check and the reading.
bool liesIn(int descriptor, const QString &canonicalFolder) {
    const QString link = QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(descriptor));
    return link.section(u'/', 0, -2) == (canonicalFolder == QLatin1String("/") ? QString() : canonicalFolder);
}

std::optional<QByteArray> readRegularFile(const QString &canonicalFolder, const QString &fileName) {
    const QByteArray path = QFile::encodeName(canonicalFolder + u'/' + fileName);
    // O_NONBLOCK: a pipe under a subtitle's name must not hold the thread.
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        !liesIn(file.get(), canonicalFolder))
        return std::nullopt;

    const bool tooLarge = status.st_size > largestSidecarBytes;
    QByteArray content(static_cast<qsizetype>(tooLarge ? signatureBytes : status.st_size), Qt::Uninitialized);
    qsizetype filled = 0;
    while (filled < content.size()) {
        const ssize_t got =
            ::read(file.get(), content.data() + filled, static_cast<size_t>(content.size() - filled));
        if (got <= 0)
            break; // the file has become shorter meanwhile, or cannot be read on: what is there is used
        filled += static_cast<qsizetype>(got);
    }
    content.truncate(filled);
    if (tooLarge && !isPictureSubtitle(content))
        return std::nullopt;
    return content;
}

} // namespace

QList<Sidecar> findSidecars(const QString &filmPath) {
    const QFileInfo film(filmPath);
    if (filmPath.isEmpty() || !film.isFile())
        return {};
    QList<Sidecar> sidecars;
    const QString folder = film.dir().canonicalPath();
    for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
        const auto told = readSidecarName(film.fileName(), name);
        if (!told)
            continue;
        if (auto content = readRegularFile(folder, name))
            sidecars.append({name, *told, std::move(*content)});
        if (sidecars.size() == mostSidecars)
            break;
    }
    return sidecars;
}

std::optional<QByteArray> readSidecar(const QString &filmPath, const QString &fileName) {
    const QFileInfo film(filmPath);
    if (filmPath.isEmpty() || !readSidecarName(film.fileName(), fileName))
        return std::nullopt;
    return readRegularFile(film.dir().canonicalPath(), fileName);
}

} // namespace murvo::service
