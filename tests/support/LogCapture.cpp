// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LogCapture.h"

#include <QMutexLocker>

#include <algorithm>

namespace murvo::test {

LogCapture::LogCapture() {
    _current = this;
    _previous = qInstallMessageHandler(&LogCapture::handle);
}

LogCapture::~LogCapture() {
    qInstallMessageHandler(_previous);
    _current = nullptr;
}

QStringList LogCapture::lines() const {
    const QMutexLocker guard(&_lock);
    return _lines;
}

QStringList LogCapture::linesBeginningWith(const QStringList &texts) const {
    QStringList found;
    const QStringList all = lines();
    for (const QString &line : all) {
        if (std::any_of(texts.begin(), texts.end(),
                        [&](const QString &text) { return line.startsWith(text); }))
            found.append(line);
    }
    return found;
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &message) {
    LogCapture *current = _current;
    if (!current) // a line of another thread while the capture ends
        return;
    {
        const QMutexLocker guard(&current->_lock);
        current->_lines.append(message);
    }
    current->_previous(type, context, message);
}

} // namespace murvo::test
