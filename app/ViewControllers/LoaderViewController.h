// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class QLabel;

namespace murvo {

class Spinner;

/// The spinning wheel with a line of text that is shown while the player waits for something. Its view lies
/// over the other views of its parent while it is shown and beneath them while it is not. Main thread only.
class LoaderViewController : public QObject {
    Q_OBJECT

  public:
    explicit LoaderViewController(QWidget *parentView);

    [[nodiscard]] QWidget *view() const;

    /// Without a text (null) the label stays as it is.
    void showLoader(const QString &text = {});
    void hideLoader();

    [[nodiscard]] QString labelText() const;
    [[nodiscard]] bool isLabelHidden() const;

  private:
    QPointer<QWidget> _view;
    QPointer<Spinner> spinningWheel;
    QPointer<QLabel> loaderLabel;
};

} // namespace murvo
