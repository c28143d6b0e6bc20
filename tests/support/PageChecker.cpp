// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PageChecker.h"

#include "app/Classes/MDragReceiverWebView.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRect>
#include <QWebEnginePage>

namespace murvo::test {

namespace {

constexpr auto check = R"(
window.axeFaults = '';
axe.run(document, {resultTypes: ['violations']}).then(({violations}) => {
  const bad = violations.filter(({impact}) => impact === 'serious' || impact === 'critical');
  axeFaults = JSON.stringify(bad.flatMap(({id, nodes}) => nodes.map(({html, failureSummary}) =>
    `${id}: ${html.slice(0, 200)} ${failureSummary.replace(/\s+/g, ' ')}`)));
}, (error) => { axeFaults = JSON.stringify([`axe-core: ${error}`]); }); 1)";

QString checkerSource() {
    QFile file(QStringLiteral(MURVO_AXE));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

QStringList faultsOf(WebViewController &page) {
    if (page.evaluate(QStringLiteral("typeof axe")) != QLatin1String("object")) {
        const QString source = checkerSource();
        if (source.isEmpty())
            return {QStringLiteral("axe-core: it is not there; scripts/install-axe fetches it")};
        page.view()->page()->runJavaScript(source);
    }
    // Half faded in, nothing has the contrast that it is going to have.
    std::ignore = waitUntil([&] {
        return page.evaluate(
                   QStringLiteral("String(document.getAnimations().every((each) => each.playState !== "
                                  "'running'))")) == QLatin1String("true");
    });
    page.view()->page()->runJavaScript(QString::fromLatin1(check));
    QString found;
    const bool hasAnswered = waitUntil([&] {
        found = page.evaluate(QStringLiteral("window.axeFaults || ''"));
        return !found.isEmpty();
    });
    if (!hasAnswered)
        return {QStringLiteral("axe-core: no answer")};
    const QJsonDocument told = QJsonDocument::fromJson(found.toUtf8());
    if (!told.isArray())
        return {QStringLiteral("axe-core: ") + found};
    QStringList faults;
    for (const QJsonValue fault : told.array())
        faults.append(fault.toString());
    return faults;
}

void photograph(const QString &name, const QRect &rectangle) {
    const QString folder = qEnvironmentVariable("MURVO_GALLERY");
    if (folder.isEmpty())
        return;
    letPass(std::chrono::milliseconds(400)); // what the check kept the page from drawing
    run(QStringLiteral("import"), {QStringLiteral("-window"), QStringLiteral("root"), QStringLiteral("-crop"),
                                   QStringLiteral("%1x%2+%3+%4")
                                       .arg(rectangle.width())
                                       .arg(rectangle.height())
                                       .arg(rectangle.x())
                                       .arg(rectangle.y()),
                                   QStringLiteral("+repage"), folder + u'/' + name + QStringLiteral(".png")});
}

} // namespace murvo::test
