// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Menus/AddressDialog.h"

#include "app/Classes/VideoSource.h"
#include "app/Platform/HttpClient.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace murvo {

namespace {

bool isFilmAddress(const QString &text) {
    return isUrlText(text) && HttpClient::canFetch(QUrl(text, QUrl::StrictMode));
}

} // namespace

AddressDialog::AddressDialog(QWidget *parent)
    : QDialog(parent)
    , _field(new QLineEdit)
    , _complaint(new QLabel) {
    constexpr int width = 460;
    setWindowTitle(tr("Open a film from the web"));
    setMinimumWidth(width);
    auto *label = new QLabel(tr("&Address of the film:"));
    label->setBuddy(_field);
    _field->setPlaceholderText(QStringLiteral("https://"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &AddressDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(_field, &QLineEdit::textEdited, _complaint, &QLabel::clear);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(_field);
    layout->addWidget(_complaint);
    layout->addWidget(buttons);

    const QString copied = QGuiApplication::clipboard()->text().trimmed();
    if (isFilmAddress(copied)) {
        _field->setText(copied);
        _field->selectAll();
    }
}

QString AddressDialog::address() const {
    return _field->text().trimmed();
}

void AddressDialog::accept() {
    if (isFilmAddress(address())) {
        QDialog::accept();
        return;
    }
    _complaint->setText(tr("This is no address of a film: it must begin with http:// or https://."));
    _field->setFocus();
    _field->selectAll();
}

} // namespace murvo
