// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace murvo::service {

/// The subtitle service inside the player's process: an HTTP server on the loopback interface with its store.
///
/// It is the service's one public header; everything else is reached over HTTP below baseUrl(). It runs on
/// threads of its own and calls nothing of the player but OpenFilm; start, the calls below and the destructor
/// belong to one thread (the player's main thread). The destructor waits for running requests, then closes
/// the store.
class EmbeddedService {
  public:
    /// How a page's wish reaches the player to play the film at path. Called on a thread of the service, with
    /// what the player asks, from any thread, just before it takes the film: false when the page was told of
    /// a failure meanwhile, and the film is not to be opened. Must not wait for the player itself.
    using OpenFilm = std::function<void(const QString &path, const std::function<bool()> &take)>;

    /// Opens (or makes) the store in dataFolder, an absolute path, and starts to listen on a free port.
    /// The folder is made for the user alone (mode 0700). Returns null and puts one sentence for the user
    /// into error when the store cannot be opened or no port can be had.
    [[nodiscard]] static std::unique_ptr<EmbeddedService> start(const QString &dataFolder, QString &error,
                                                                const OpenFilm &openFilm = {});

    ~EmbeddedService();
    EmbeddedService(const EmbeddedService &) = delete;
    EmbeddedService &operator=(const EmbeddedService &) = delete;

    /// "http://127.0.0.1:PORT/TOKEN/": the address below which every page and route lies; ends in "/".
    /// The token is new at each start and is what keeps other users and pages out.
    [[nodiscard]] QString baseUrl() const;

    /// Tells where the film with this movie hash and size (bytes) lies on this machine, so that the lookup
    /// that follows finds the subtitles beside it. Hash and size 0 stand for a film that could not be hashed;
    /// such a film is told apart by its path. Never sent over HTTP: a remote service does without.
    void filmIdentified(const QString &path, quint64 movieHash, quint64 fileSize);

    /// Tells the home page that a film waits in the player for it to say that it is ready.
    void filmPending();

  private:
    struct Impl;
    explicit EmbeddedService(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> _impl;
};

} // namespace murvo::service
