// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/PageRoutes.h"

#include "Http/Router.h"
#include "Log.h"

#include <QDirIterator>
#include <QFile>

namespace murvo::service {

namespace {

QByteArray contentTypeOf(const QString &fileName) {
    static const QHash<QString, QByteArray> types{{QStringLiteral("html"), "text/html; charset=utf-8"},
                                                  {QStringLiteral("css"), "text/css; charset=utf-8"},
                                                  {QStringLiteral("mjs"), "text/javascript; charset=utf-8"},
                                                  {QStringLiteral("js"), "text/javascript; charset=utf-8"},
                                                  {QStringLiteral("svg"), "image/svg+xml; charset=utf-8"}};
    return types.value(fileName.section(u'.', -1), QByteArrayLiteral("application/octet-stream"));
}

void addFile(Router &router, const QString &path, const QString &resource) {
    QFile file(resource);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(serviceLog) << "A page's file is missing from the program:" << resource;
        return;
    }
    router.add("GET", path, [type = contentTypeOf(resource), bytes = file.readAll()](const Request &) {
        return Response{200, type, bytes};
    });
}

} // namespace

void addPageRoutes(Router &router) {
    const QString root = QStringLiteral(":/murvo/web/");
    QDirIterator files(root, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString resource = files.next();
        addFile(router, QStringLiteral("Web/") + resource.mid(root.size()), resource);
    }
    addFile(router, QStringLiteral("Player/Home"), root + QStringLiteral("home/home.html"));
    addFile(router, QStringLiteral("Player/Play"), root + QStringLiteral("play/play.html"));
    addFile(router, QStringLiteral("Account/Register"), root + QStringLiteral("account/register.html"));
}

} // namespace murvo::service
