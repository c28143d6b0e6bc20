// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace murvo {

/// Asks for the address of a film on the web. It begins with the address that lies in the clipboard, if one
/// does, and closes only with a usable one. Main thread only.
class AddressDialog : public QDialog {
    Q_OBJECT

  public:
    explicit AddressDialog(QWidget *parent);

    /// As typed, without blanks around it.
    [[nodiscard]] QString address() const;

    void accept() override;

  private:
    QLineEdit *_field;
    QLabel *_complaint;
};

} // namespace murvo
