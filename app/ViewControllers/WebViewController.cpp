// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewControllers/WebViewController.h"

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Platform/HttpClient.h"
#include "app/Platform/Log.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <QWebEngineLoadingInfo>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInfo>
#include <QWebEngineUrlRequestInterceptor>

#include <chrono>
#include <memory>

namespace murvo {

namespace {

using namespace std::chrono_literals;

// A healthy page answers within a few milliseconds.
constexpr auto evaluationLimit = 1s;
// What a press asked for may take the service some time.
constexpr std::chrono::milliseconds pressLimit = 30s;

/// A page that asks its controller about navigations and writes its console to the log.
class Page : public QWebEnginePage {
  public:
    using Policy = std::function<bool(const QUrl &url, bool isMainFrame)>;
    using FileChooser = WebViewController::FileChooser;

    Page(QWebEngineProfile *profile, QObject *parent, Policy policy, FileChooser chooser)
        : QWebEnginePage(profile, parent)
        , _policy(std::move(policy))
        , _chooser(std::move(chooser)) {}

  protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType, bool isMainFrame) override {
        return _policy(url, isMainFrame);
    }

    QStringList chooseFiles(FileSelectionMode mode, const QStringList &, const QStringList &) override {
        return mode == FileSelectUploadFolder ? QStringList() : _chooser();
    }

    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString &message, int line,
                                  const QString &source) override {
        const auto text =
            singleLine(QStringLiteral("%1 (%2:%3)").arg(message, QUrl(source).fileName()).arg(line));
        if (level == ErrorMessageLevel)
            qCWarning(logPage).noquote() << text;
        else
            qCInfo(logPage).noquote() << text;
    }

  private:
    Policy _policy;
    FileChooser _chooser;
};

QUrl originOf(const QUrl &url) {
    QUrl origin;
    origin.setScheme(url.scheme());
    origin.setHost(url.host());
    origin.setPort(url.port(url.scheme() == QLatin1String("https") ? 443 : 80));
    return origin;
}

/// Whether the load that has ended has brought a page; current is the page that shows.
bool isLoaded(const QWebEngineLoadingInfo &info, const QUrl &current) {
    constexpr int firstErrorStatus = 400;
    switch (info.status()) {
    case QWebEngineLoadingInfo::LoadSucceededStatus:
        return info.errorDomain() != QWebEngineLoadingInfo::HttpStatusCodeDomain ||
               info.errorCode() < firstErrorStatus;
    case QWebEngineLoadingInfo::LoadStoppedStatus:
        // A page that commands something by navigating before it is loaded ends its load in this way, and so
        // does an answer without a page.
        return info.url() == current || !HttpClient::canFetch(info.url());
    default:
        return false;
    }
}

/// Tells of each page that the view loads of itself, and of those to which its server redirects; not of those
/// to which a page leads.
class OwnLoads : public QWebEngineUrlRequestInterceptor {
  public:
    OwnLoads(QObject *parent, std::function<void(const QUrl &url)> loads)
        : QWebEngineUrlRequestInterceptor(parent)
        , _loads(std::move(loads)) {}

    void interceptRequest(QWebEngineUrlRequestInfo &info) override {
        if (info.resourceType() == QWebEngineUrlRequestInfo::ResourceTypeMainFrame &&
            info.initiator().isEmpty())
            _loads(info.requestUrl());
    }

  private:
    std::function<void(const QUrl &url)> _loads;
};

void restrict(QWebEngineSettings &settings) {
    settings.setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
    settings.setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, false);
    settings.setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings.setAttribute(QWebEngineSettings::PluginsEnabled, false);
    settings.setAttribute(QWebEngineSettings::AutoLoadIconsForPage, false); // no window shows one
    settings.setAttribute(QWebEngineSettings::NavigateOnDropEnabled, false);
    settings.setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, true);
    settings.setAttribute(QWebEngineSettings::PlaybackRequiresUserGesture, false);
}

} // namespace

WebViewController::WebViewController(QWebEngineProfile &profile, bool useCache, QObject *parent)
    : QObject(parent) {
    _useCache = useCache;
    makeView(profile);
}

WebViewController::WebViewController(QWebEngineProfile &profile, QObject *parent)
    : QObject(parent) {
    makeView(profile);
}

WebViewController::~WebViewController() {
    delete _view;
}

void WebViewController::makeView(QWebEngineProfile &profile) {
    // Emptying the cache here would stall the load that follows, now and then for good. To keep none has the
    // same effect: what the view shows comes from the network.
    profile.setHttpCacheType(_useCache ? QWebEngineProfile::MemoryHttpCache : QWebEngineProfile::NoCache);
    _view = new MDragReceiverWebView;
    auto policy = [this](const QUrl &url, bool isMainFrame) {
        const bool isAccepted = !_policy || _policy(url);
        if (isMainFrame)
            _refusedUrl = isAccepted ? QUrl() : url;
        if (isAccepted && isMainFrame)
            Q_EMIT progressStarted();
        return isAccepted;
    };
    auto chooser = [this] { return _fileChooser ? _fileChooser() : QStringList(); };
    auto *page = new Page(&profile, _view, std::move(policy), std::move(chooser));
    page->setBackgroundColor(Qt::transparent);
    restrict(*page->settings());
    page->setUrlRequestInterceptor(
        new OwnLoads(page, [this](const QUrl &url) { _ownOrigin = originOf(url); }));
    _view->setPage(page);
    QCoreApplication::instance()->installEventFilter(this); // the engine's widget within the view changes
    connect(page, &QWebEnginePage::loadingChanged, this, [this](const QWebEngineLoadingInfo &info) {
        if (info.status() == QWebEngineLoadingInfo::LoadStartedStatus)
            return;
        // A navigation that was refused is no page that did not come: the one before it stays.
        if (info.url() == _refusedUrl || isLoaded(info, _view->url()))
            Q_EMIT progressFinished();
        else
            Q_EMIT progressFailed();
    });
    connect(page, &QWebEnginePage::renderProcessTerminated, this,
            [this](QWebEnginePage::RenderProcessTerminationStatus status) {
                if (status == QWebEnginePage::NormalTerminationStatus)
                    return;
                qCWarning(logPage) << "The process of a page has died:" << status;
                Q_EMIT pageDied();
            });
}

MDragReceiverWebView *WebViewController::view() const {
    return _view;
}

void WebViewController::setNavigationPolicy(NavigationPolicy policy) {
    _policy = std::move(policy);
}

void WebViewController::setFileChooser(FileChooser chooser) {
    _fileChooser = std::move(chooser);
}

void WebViewController::setBackgroundColor(const QColor &color) {
    _view->page()->setBackgroundColor(color);
}

void WebViewController::loadUrl(const QString &url) {
    _view->load(QUrl(url));
}

void WebViewController::clear() {
    _view->load(QUrl(QStringLiteral("about:blank")));
}

bool WebViewController::isLoading() const {
    return _view->page()->isLoading();
}

bool WebViewController::isOwnPage() const {
    return isOwn(_view->url());
}

bool WebViewController::isOwn(const QUrl &url) const {
    return originOf(url) == _ownOrigin;
}

bool WebViewController::takePress() const {
    const bool isRecent = _lastPress.isValid() && !_lastPress.hasExpired(pressLimit.count());
    _lastPress.invalidate();
    return isRecent;
}

bool WebViewController::eventFilter(QObject *watched, QEvent *event) {
    const bool isPress = event->type() == QEvent::MouseButtonPress ||
                         event->type() == QEvent::MouseButtonDblClick || // the second of two in short order
                         event->type() == QEvent::KeyPress;
    if (isPress && event->spontaneous()) {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (widget && _view && _view->isAncestorOf(widget))
            _lastPress.start();
    }
    return QObject::eventFilter(watched, event);
}

void WebViewController::send(const QString &script) {
    _view->page()->runJavaScript(script);
}

QString WebViewController::evaluate(const QString &script) {
    struct Answer {
        QEventLoop *waiting = nullptr; // null once nobody waits any more
        QString text;
    };
    QEventLoop loop;
    const auto answer = std::make_shared<Answer>(Answer{.waiting = &loop, .text = {}});
    QTimer::singleShot(evaluationLimit, &loop, &QEventLoop::quit);
    connect(_view->page(), &QWebEnginePage::renderProcessTerminated, &loop, &QEventLoop::quit);
    _view->page()->runJavaScript(script, [answer](const QVariant &result) {
        answer->text = result.toString();
        if (answer->waiting)
            answer->waiting->quit();
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    answer->waiting = nullptr;
    return answer->text.isNull() ? QStringLiteral("") : answer->text;
}

} // namespace murvo
