// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <array>

namespace murvo {

/// Turns SIGTERM, SIGINT and SIGHUP into a signal on the main thread, so that the program ends in order.
/// One instance for the process.
class TerminationSignals : public QObject {
    Q_OBJECT

  public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

  Q_SIGNALS:
    void received();

  private:
    std::array<int, 2> _sockets = {-1, -1};
};

} // namespace murvo
