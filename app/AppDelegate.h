// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Classes/Deferred.h"
#include "app/Classes/PageRequest.h"
#include "app/Classes/VideoHash.h"
#include "app/Platform/HttpClient.h"
#include "app/Platform/NotificationCenter.h"
#include "app/Platform/SpokenSound.h"

#include <QMessageBox>
#include <QObject>
#include <QPointer>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class QWebEngineDownloadRequest;
class QWebEngineProfile;

namespace murvo {

class LoaderViewController;
class MainWindow;
class MKeyableWindow;
class VLCInstance;
class VLCMediaPlayer;
class VLCVideoViewController;
class WebViewController;

/// The film under way, or the last one: it is overwritten when the next one is taken in, not cleared at the
/// end.
struct Session {
    QString inputVideoSource; ///< handed over by the shell, waits for the home page; null when none waits
    QString videoSourcePath;  ///< path or URL
    QString videoFileName;    ///< as sent to the service; null when a URL has no name
    QString nativeLanguage;   ///< code of the language chosen on the home page
    QByteArray subtitlesData; ///< body of the lookup reply
    qint64 videoProcessStatusCode = 0; ///< HTTP status of the lookup reply
    qint64 videoId = 0;                ///< the service's identifier
    bool homeScreenLoaded = false;     ///< the home page has said that it is ready
    bool aspectRatioSet = false;       ///< the window has taken the film's shape
};

/// The application controller: it owns the windows and the session and wires everything else. One instance,
/// on the main thread. It leads a film from the intake by way of hash, lookup, download and upload to the
/// player, obeys the pages and feeds them. It knows nothing of subtitles, words or languages.
///
/// Each film has a generation number: whatever still arrives for an earlier one is dropped.
class AppDelegate : public QObject {
    Q_OBJECT

  public:
    /// What a service in the same process is told directly; empty with another one. Called on the main
    /// thread.
    struct ServiceLink {
        /// A local film's hash is known; the lookup follows.
        std::function<void(const QString &path, const VideoHash &hash)> filmIdentified;
        /// A film from the shell waits for the home page to say that it is ready.
        std::function<void()> filmPending;
    };

    /// Profile and library are borrowed and must outlive the controller.
    AppDelegate(QWebEngineProfile &profile, const VLCInstance &vlc, ServiceLink serviceLink = {});
    ~AppDelegate() override;

    /// Shows the home screen. Call once, in the event loop's thread.
    void applicationDidFinishLaunching();
    /// Keeps a film that the shell hands over until the home page next says that it is ready.
    void applicationOpenFile(const QString &path);
    /// Brings the windows before those of other programs, and back from the task bar.
    void comeToFront();
    /// Takes a film in: path or URL.
    void processVideoAndLaunch(const QString &videoSource);
    /// The way back from a film, or from an error, to the home page.
    void loadHomeScreen();

    // The parts of the window stack, for those who look from outside. Null before the first film where
    // marked.
    [[nodiscard]] MainWindow &window() const { return *_window; }
    [[nodiscard]] QWidget *vlcViewWindow() const { return _vlcViewWindow; }                    // null
    [[nodiscard]] MKeyableWindow *playerWebViewWindow() const { return _playerWebViewWindow; } // null
    [[nodiscard]] WebViewController *homeWebViewController() const { return _homeWebViewController.get(); }
    [[nodiscard]] WebViewController *playerWebViewController() const {
        return _playerWebViewController.get();
    }
    [[nodiscard]] LoaderViewController *loaderViewController() const { return _loaderViewController; }
    [[nodiscard]] VLCMediaPlayer *player() const; // null
    [[nodiscard]] const Session &session() const { return _session; }

  Q_SIGNALS:
    /// The user wants the program to end.
    void terminate();

  private:
    using Arguments = PageRequest::Arguments;

    // Wiring
    void connectMainWindow();
    void connectMenus();

    // Intake
    void takeVideoIn(const QString &videoSource);
    void endEarlierVideo();
    [[nodiscard]] bool isUrl() const;

    // Home screen
    void createHomeScreen();
    void homeScreenConnecting();
    void homeScreenConnected();
    void loadHomePage();
    void homePageDied();
    void alertThenHome(const QString &message, const QString &informativeText);

    // Lookup
    void receiveHash(const VideoHash &hash);
    void onHashComputed(const VideoHash &hash);
    void lookupDidFinishLoading();
    void alertVideoProcessingError();

    // Player screen
    void loadPlayerScreen();
    void hidePlayerScreen();
    static void dismissDialogs(const QWidget &above);
    void createPlayerScreen();
    void connectPlayerScreen();
    void repositionWindows();
    void raisePlayerWindows();
    void exitFullscreen();
    void windowDidResize();
    void windowDidBecomeKey();
    [[nodiscard]] bool windowShouldClose();
    void sendToPlayerPage(const QString &script);
    [[nodiscard]] bool isPlayerScreenVisible() const;

    // Playback
    void launchVideo();
    void loadPlayerPage();
    void mediaPlayerStateChanged();
    void fitWindowToVideo();
    void mediaPlayerTimeChanged();
    void alertVideoPlayingError();

    // Page bridge
    enum class Page { Home, Player };
    [[nodiscard]] bool decidePolicyForNavigation(const QUrl &url, Page page);
    [[nodiscard]] QStringList runOpenPanelForFileButton();
    void handlePageRequest(const PageRequest &request);
    void handleExecutionRequest(const QString &name, const Arguments &arguments);
    void handleDataRequest(const QString &name, const Arguments &arguments);
    void returnJsResultToClient(const QString &value, const QString &guid);
    void answerWhenKnown(const Deferred::Ptr &deferred, const QString &guid);

    // Downloads of pages
    void connectDownloads();
    [[nodiscard]] bool isFileForUser(const QWebEngineDownloadRequest &download) const;
    void alertFileNotKept(const QString &fileName, const QString &reason);

    // Commands that are more than a call
    void enableDraggableHomeScreen();
    void resizeForTutorial();

    QWebEngineProfile &_profile;
    const VLCInstance &_vlc;
    const ServiceLink _serviceLink;
    Session _session;
    std::atomic<unsigned> _generation = 0; // of the film; read on the remote hash's queue
    std::vector<NotificationCenter::Registration> _observers;

    // Windows before the controllers whose views lie in them: destroyed in the opposite order.
    std::unique_ptr<MainWindow> _window;
    QWidget *_vlcViewWindow = nullptr;                     // child of the main window
    MKeyableWindow *_playerWebViewWindow = nullptr;        // child of the video window
    LoaderViewController *_loaderViewController = nullptr; // child of the main window's content
    std::unique_ptr<WebViewController> _homeWebViewController;
    std::unique_ptr<WebViewController> _playerWebViewController;
    std::unique_ptr<VLCVideoViewController> _vlcVideoViewController;
    QPointer<QMessageBox> _alert;

    HttpClient _videoConnections; // lookup, downloads and upload of the film under way
    SpokenSound _spokenSound;

    // Values that pages may ask for before the player knows them; null before the first film.
    Deferred::Ptr _durationDeferred;
    Deferred::Ptr _audioInfoDeferred;
    Deferred::Ptr _playbackSpeedDeferred;
    Deferred::Ptr _volumeDeferred;
};

} // namespace murvo
