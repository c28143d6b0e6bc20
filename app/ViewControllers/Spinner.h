// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

namespace murvo {

/// An indeterminate progress wheel: twelve spokes of which the brightest goes round once a second. It takes
/// no time while it stands still.
class Spinner : public QWidget {
    Q_OBJECT

  public:
    explicit Spinner(QWidget *parent = nullptr);

    void start();
    void stop();
    [[nodiscard]] bool isSpinning() const;

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    QTimer _timer;
    int _step = 0;
};

} // namespace murvo
