// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/PageScheme.h"

#include <QWebEngineProfile>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>
#include <QWebEngineUrlSchemeHandler>

namespace murvo::PageScheme {

namespace {

const QByteArray schemeName = QByteArrayLiteral("app");

class RefusingHandler : public QWebEngineUrlSchemeHandler {
  public:
    using QWebEngineUrlSchemeHandler::QWebEngineUrlSchemeHandler;

    void requestStarted(QWebEngineUrlRequestJob *job) override {
        job->fail(QWebEngineUrlRequestJob::RequestAborted);
    }
};

} // namespace

void registerScheme() {
    QWebEngineUrlScheme scheme(schemeName);
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
    scheme.setFlags(QWebEngineUrlScheme::SecureScheme);
    QWebEngineUrlScheme::registerScheme(scheme);
}

void install(QWebEngineProfile &profile) {
    profile.installUrlSchemeHandler(schemeName, new RefusingHandler(&profile));
}

} // namespace murvo::PageScheme
