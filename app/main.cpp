// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"
#include "app/Classes/MConstants.h"
#include "app/Classes/VideoSource.h"
#include "app/Media/VLCInstance.h"
#include "app/Platform/Log.h"
#include "app/Platform/PageScheme.h"
#include "app/Platform/SingleInstance.h"
#include "app/Platform/TaskQueue.h"
#include "app/Platform/TerminationSignals.h"
#include "app/Platform/X11WindowManager.h"
#include "service/EmbeddedService.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QIcon>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>
#include <QWebEngineProfile>

#include <chrono>
#include <cstdio>
#include <optional>
#include <unistd.h>

using namespace murvo;

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
// Longer than a start takes on a slow machine.
constexpr std::chrono::seconds runningInstanceLimit{20};

constexpr const char *usage = R"(Usage: murvo [FILM]

Plays FILM, a file or an HTTP URL, with its subtitles. Without one it shows the home screen.
Where Murvo runs already, it takes the film and comes to the front.

  --help     this text
  --version  the version

Environment:
  MURVO_BASE_URL  the subtitle service to use in place of the embedded one, unless empty; ends in "/"
)";

struct Invocation {
    std::optional<int> exitStatus; ///< set when the program ends at once
    QString film;                  ///< null without one
};

Invocation parseArguments(int argc, char **argv) {
    Invocation invocation;
    bool areOptionsOver = false;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QFile::decodeName(argv[i]);
        if (!areOptionsOver && argument == QLatin1String("--help")) {
            std::fputs(usage, stdout);
            invocation.exitStatus = 0;
        } else if (!areOptionsOver && argument == QLatin1String("--version")) {
            std::puts("murvo " MURVO_VERSION);
            invocation.exitStatus = 0;
        } else if (!areOptionsOver && argument == QLatin1String("--")) {
            areOptionsOver = true;
        } else if (!areOptionsOver && argument.startsWith(u'-')) {
            std::fprintf(stderr, "murvo: unknown option %s; see murvo --help\n", argv[i]);
            invocation.exitStatus = exitUsage;
        } else if (!argument.isEmpty()) {
            invocation.film = videoSourceFromShell(argument, QDir::currentPath());
        }
    }
    return invocation;
}

/// Settings that the libraries read from the environment; a user's own choice wins.
void prepareEnvironment() {
    // libVLC draws into X11 windows only; under Wayland that means XWayland.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    // Its library writes errors that are none to stderr, past the log, at nearly every start.
    if (qEnvironmentVariableIsEmpty("QTWEBENGINE_CHROMIUM_FLAGS"))
        qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--log-level=3");
    // The web engine's sandbox cannot be had as root, which is how containers run.
    if (::geteuid() == 0 && qEnvironmentVariableIsEmpty("QTWEBENGINE_DISABLE_SANDBOX")) {
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
        qCInfo(logApp, "Running as root: the web engine's sandbox is off");
    }
}

/// The address of the service that the user names; null without one.
QString givenService() {
    QString given = qEnvironmentVariable("MURVO_BASE_URL");
    return given.isEmpty() ? QString() : given;
}

QString dataFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/murvo");
}

/// Started from the desktop nobody sees stderr.
void complain(const QString &sentence) {
    std::fprintf(stderr, "murvo: %s\n", qPrintable(sentence));
    QMessageBox::critical(nullptr, QStringLiteral("Murvo"), sentence);
}

/// Plays what a page of the embedded service wants played: the controller there is then, if there is one.
service::EmbeddedService::OpenFilm openBy(const QPointer<AppDelegate> &delegate) {
    return [&delegate](const QString &path, const std::function<bool()> &take) {
        TaskQueue::mainQueue().async([&delegate, path, take] {
            if (delegate && take())
                delegate->applicationOpenFile(path);
        });
    };
}

/// The address of the service to use, or null and a sentence for the user. Starts the embedded service when
/// no other is named.
QString findService(std::unique_ptr<service::EmbeddedService> &embedded,
                    const service::EmbeddedService::OpenFilm &openFilm, QString &error) {
    QString given = givenService();
    if (!given.isNull())
        return given;
    embedded = service::EmbeddedService::start(dataFolder(), error, openFilm);
    return embedded ? embedded->baseUrl() : QString();
}

/// One Murvo runs for each user, store, service and screen.
QString instanceName() {
    const QString told = dataFolder() + u'\n' + givenService() + u'\n' + qEnvironmentVariable("DISPLAY");
    return QStringLiteral("murvo-") +
           QString::fromLatin1(
               QCryptographicHash::hash(told.toUtf8(), QCryptographicHash::Sha256).toHex().left(16));
}

/// Leaves the film to a Murvo that runs already. Returns the exit status in that case.
std::optional<int> leaveToRunningInstance(SingleInstance &instance, const QString &film,
                                          const QByteArray &startupId) {
    switch (instance.claim(film.toUtf8(), runningInstanceLimit)) {
    case SingleInstance::Claim::First:
        return std::nullopt;
    case SingleInstance::Claim::HandedOver:
        endStartupNotification(startupId);
        qCInfo(logApp, "Left to the Murvo that runs already");
        return 0;
    case SingleInstance::Claim::Unanswered:
        break;
    }
    complain(
        QStringLiteral("Murvo is running already, but it does not answer. End it and start Murvo again."));
    return exitFailure;
}

int runApplication(QApplication &application, SingleInstance &instance, const QString &film) {
    const TerminationSignals signalsOfEnd;
    QObject::connect(&signalsOfEnd, &TerminationSignals::received, &application,
                     [] { QCoreApplication::exit(0); });
    QPointer<AppDelegate> opener; // outlives the service, which calls it
    std::unique_ptr<service::EmbeddedService> embedded;
    QString error;
    const QString baseUrl = findService(embedded, openBy(opener), error);
    if (baseUrl.isNull()) {
        instance.giveUp(); // a later start says the same, in place of waiting for this one
        complain(error);
        return exitFailure;
    }
    MConstants::setMurvoBaseUrl(baseUrl);

    // Order of life: the pages end before their profile, the players before the library.
    const VLCInstance vlc;
    QWebEngineProfile profile;
    PageScheme::install(profile);
    AppDelegate::ServiceLink serviceLink;
    if (embedded) {
        serviceLink.filmIdentified = [&embedded](const QString &path, const VideoHash &hash) {
            embedded->filmIdentified(path, hash.fileHash, hash.fileSize);
        };
        serviceLink.filmPending = [&embedded] { embedded->filmPending(); };
    }
    AppDelegate delegate(profile, vlc, std::move(serviceLink));
    opener = &delegate;
    QObject::connect(&delegate, &AppDelegate::terminate, &application, [] { QCoreApplication::exit(0); });

    delegate.applicationDidFinishLaunching();
    if (!film.isNull())
        delegate.applicationOpenFile(film);
    // later starts -> the film and the windows
    QObject::connect(&instance, &SingleInstance::received, &delegate, [&delegate](const QByteArray &message) {
        if (!message.isEmpty())
            delegate.applicationOpenFile(QString::fromUtf8(message));
        delegate.comeToFront();
    });
    instance.listen();
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv) {
    const Invocation invocation = parseArguments(argc, argv);
    if (invocation.exitStatus)
        return *invocation.exitStatus;
    if (!givenService().isNull() && !givenService().endsWith(u'/')) {
        std::fputs("murvo: MURVO_BASE_URL must end in \"/\"\n", stderr);
        return exitUsage;
    }
    installLogFormat();
    const QByteArray startupId = qgetenv("DESKTOP_STARTUP_ID"); // before Qt takes it away
    prepareEnvironment();
    PageScheme::registerScheme();
    QApplication::setOrganizationName(QStringLiteral("Murvo"));
    QApplication::setApplicationName(QStringLiteral("Murvo"));
    QApplication::setDesktopFileName(QStringLiteral("murvo"));
    QApplication::setQuitOnLastWindowClosed(false);
    // The web engine takes arguments for switches of its own: it gets none of the user's.
    int ownArguments = 1;
    QApplication application(ownArguments, argv);
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral("murvo"), QIcon(QStringLiteral(":/murvo.png"))));
    SingleInstance instance(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation),
                            instanceName());
    if (const auto status = leaveToRunningInstance(instance, invocation.film, startupId))
        return *status;
    const int status = runApplication(application, instance, invocation.film);
    if (status == 0)
        qCInfo(logApp, "Ended in order");
    return status;
}
