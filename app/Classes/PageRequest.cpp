// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/PageRequest.h"

namespace murvo {

namespace {

QStringList pathComponents(const QUrl &url) {
    QStringList components = url.path(QUrl::FullyEncoded).split(u'/', Qt::SkipEmptyParts);
    for (QString &component : components)
        component = QUrl::fromPercentEncoding(component.toUtf8());
    return components;
}

PageRequest::Kind kindNamed(const QString &name) {
    if (name == QLatin1String("Execute"))
        return PageRequest::Kind::Execute;
    if (name == QLatin1String("Request"))
        return PageRequest::Kind::Request;
    return PageRequest::Kind::Unknown;
}

/// QUrl encodes these characters, which pages use bare, as in a guid in braces.
QString asWritten(QString query) {
    for (const char16_t character : {u'{', u'}', u'|', u'^', u'\\', u'`'}) {
        const QString encoded = u'%' + QString::number(character, 16).toUpper();
        query.replace(encoded, QString(character));
    }
    return query;
}

PageRequest::Arguments parseArguments(const QString &query) {
    PageRequest::Arguments arguments;
    const QStringList items = query.split(u'&');
    for (const QString &item : items) {
        const QStringList parts = item.split(u'=');
        if (parts.size() == 2)
            arguments.insert(parts[0], parts[1]);
    }
    return arguments;
}

} // namespace

std::optional<PageRequest> PageRequest::fromUrl(const QUrl &url) {
    if (url.scheme() != QLatin1String("app"))
        return std::nullopt;
    const QStringList components = pathComponents(url);
    if (components.isEmpty())
        return PageRequest{};
    return PageRequest{.kind = kindNamed(components.first()),
                       .name = components.last(),
                       .arguments = parseArguments(asWritten(url.query(QUrl::FullyEncoded)))};
}

QString lastUrlComponent(const QUrl &url) {
    const QStringList components = pathComponents(url);
    return components.isEmpty() ? QString() : components.last();
}

} // namespace murvo
