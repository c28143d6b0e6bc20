// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/SidecarFile.h"

#include "Subtitles/Gunzip.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace murvo::service {

namespace {

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
bool liesAt(int descriptor, const QString &path) {
    return QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(descriptor)).section(u'/', 0, -2) ==
           path.section(u'/', 0, -2);
}

QByteArray readFrom(int descriptor, qsizetype mostBytes) {
    QByteArray content(mostBytes, Qt::Uninitialized);
    qsizetype filled = 0;
    while (filled < content.size()) {
        const ssize_t got =
            ::read(descriptor, content.data() + filled, static_cast<size_t>(content.size() - filled));
        if (got <= 0)
            break; // the file has become shorter meanwhile, or cannot be read on: what is there is used
        filled += static_cast<qsizetype>(got);
    }
    content.truncate(filled);
    return content;
}

} // namespace

SidecarFile readSidecarFile(const QString &canonicalFolder, const QString &place) {
    const QString path = (canonicalFolder == QLatin1String("/") ? QString() : canonicalFolder) + u'/' + place;
    // O_NONBLOCK: a pipe under a subtitle's name must not hold the thread.
    const FileDescriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {{}, CueProblem::Unreadable};
    if (!liesAt(file.get(), path))
        return {{}, CueProblem::LiesElsewhere};
    const bool isTooLarge = status.st_size > largestSubtitleBytes;
    QByteArray content =
        readFrom(file.get(), isTooLarge ? signatureBytes : static_cast<qsizetype>(status.st_size));
    if (isPictureSubtitle(content))
        return {{}, CueProblem::PictureSubtitle};
    if (isTooLarge)
        return {{}, CueProblem::TooLarge};
    return {std::move(content), CueProblem::None};
}

} // namespace murvo::service
