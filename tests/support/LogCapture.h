// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

namespace murvo::test {

/// Keeps the messages that are logged while it lives, without time and category, and passes them on.
/// One at a time.
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    [[nodiscard]] QStringList lines() const;
    /// Those that begin with one of the texts.
    [[nodiscard]] QStringList linesBeginningWith(const QStringList &texts) const;

  private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message);

    static inline LogCapture *_current = nullptr;
    QtMessageHandler _previous;
    mutable QMutex _lock;
    QStringList _lines;
};

} // namespace murvo::test
