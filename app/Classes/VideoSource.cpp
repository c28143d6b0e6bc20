// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/VideoSource.h"

#include <QDir>
#include <QUrl>

namespace murvo {

bool isUrlText(const QString &text) {
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && !url.scheme().isEmpty() && !url.host().isEmpty();
}

QString lastPathComponent(const QString &path) {
    const QStringList components = path.split(u'/', Qt::SkipEmptyParts);
    return components.isEmpty() ? path : components.last();
}

QString videoSourceFromShell(const QString &argument, const QString &folder) {
    const QUrl url(argument, QUrl::StrictMode);
    if (url.isValid() && url.isLocalFile())
        return url.toLocalFile();
    if (isUrlText(argument))
        return argument;
    return QDir::cleanPath(QDir(folder).absoluteFilePath(argument));
}

} // namespace murvo
