// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <chrono>
#include <functional>
#include <memory>

namespace murvo::service {

/// Hands films over to the program that the service is part of, which takes them on a thread of its own
/// choice. Any thread; it knows neither films nor the program.
class FilmHandover {
  public:
    /// True: the film is the program's now. False: it was given up, and must not be opened any more.
    using Take = std::function<bool()>;
    /// Begins to take the film at path, and calls take when it can: from any thread, or never.
    using Program = std::function<void(const QString &path, const Take &take)>;

    /// The program is busy for some seconds at worst, as with the end of another film.
    explicit FilmHandover(Program program, std::chrono::milliseconds longestWait = std::chrono::seconds(10));
    ~FilmHandover();
    FilmHandover(const FilmHandover &) = delete;
    FilmHandover &operator=(const FilmHandover &) = delete;

    /// Returns when the program has the film; false when it does not take it in that time: then it never
    /// does.
    [[nodiscard]] bool hand(const QString &path);

    /// Ends all waits, and lets none begin any more.
    void close();

  private:
    struct State; // shared with calls of take that may come after the end
    Program _program;
    std::chrono::milliseconds _longestWait;
    std::shared_ptr<State> _state;
};

} // namespace murvo::service
