// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <functional>

class QColor;
class QWebEngineProfile;

namespace murvo {

class MDragReceiverWebView;

/// Hosts one web view: the home page or the player page. It is the one place that speaks to its page.
/// It deletes its view, unless the window that holds it did so before. Main thread only.
class WebViewController : public QObject {
    Q_OBJECT

  public:
    /// Decides about each navigation of the page, in whichever frame: true lets the view load the URL.
    using NavigationPolicy = std::function<bool(const QUrl &url)>;
    /// Asks the user for the files of a file button of the page; empty when the user cancels.
    using FileChooser = std::function<QStringList()>;

    /// The profile is borrowed and must outlive the controller. The last controller made decides by useCache,
    /// for all of them, whether views made from then on begin with an emptied cache.
    WebViewController(QWebEngineProfile &profile, bool useCache, QObject *parent = nullptr);
    /// Leaves the shared choice as it is.
    explicit WebViewController(QWebEngineProfile &profile, QObject *parent = nullptr);
    ~WebViewController() override;

    [[nodiscard]] MDragReceiverWebView *view() const;
    void setNavigationPolicy(NavigationPolicy policy);
    /// Without one, file buttons do nothing.
    void setFileChooser(FileChooser chooser);
    /// What shows behind the page; nothing does (it is transparent) unless a colour is set. Views that share
    /// their window with widgets over or beneath them need an opaque one: a transparent view lies over
    /// everything in its window until its page has drawn a background, and the place that it then takes among
    /// the others stays unpainted.
    void setBackgroundColor(const QColor &color);

    /// The page, and the server to which redirects lead from it, is the service's: see isOwnPage().
    void loadUrl(const QString &url);
    /// Leaves the page for an empty one.
    void clear();

    [[nodiscard]] bool isLoading() const;

    /// Whether the page that shows lies on the server to which loadUrl() led last. Pages may lead on to
    /// others.
    [[nodiscard]] bool isOwnPage() const;

    /// Whether the address lies on that server.
    [[nodiscard]] bool isOwn(const QUrl &url) const;

    /// Whether the user has pressed a button or a key in the page within the last half minute, since this was
    /// asked last.
    [[nodiscard]] bool takePress() const;

    /// Runs the script whose result nobody wants; returns at once.
    void send(const QString &script);
    /// Runs the script and waits for its result as text, without handling user input, for a second at most.
    /// Empty when there is no result in time.
    [[nodiscard]] QString evaluate(const QString &script);

  Q_SIGNALS:
    /// An accepted navigation of the main frame has begun; it has been loaded.
    void progressStarted();
    void progressFinished();
    /// It cannot be loaded: no connection, no answer, or an answer of failure.
    void progressFailed();
    /// The page's process is gone and with it the page; the view can load again.
    void pageDied();

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    static inline bool _useCache = false;

    void makeView(QWebEngineProfile &profile);

    QPointer<MDragReceiverWebView> _view;
    NavigationPolicy _policy;
    FileChooser _fileChooser;
    QUrl _ownOrigin;
    mutable QElapsedTimer _lastPress; // invalid: none, or taken
    QUrl _refusedUrl;                 // by the policy, in the main frame, last; empty when it accepted
};

} // namespace murvo
