// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace murvo::service {

/// Hands films over to the program that the service is part of, which takes them on a thread of its own
/// choice. Any thread; it knows neither films nor the program.
class FilmHandover {
  public:
    /// Begins to take the film at path, and calls taken once it has it: from any thread, or never.
    using Program = std::function<void(const QString &path, const std::function<void()> &taken)>;

    explicit FilmHandover(Program program);
    ~FilmHandover();
    FilmHandover(const FilmHandover &) = delete;
    FilmHandover &operator=(const FilmHandover &) = delete;

    /// Returns when the program has the film; false when it does not take it, within seconds.
    [[nodiscard]] bool hand(const QString &path);

    /// Ends all waits, and lets none begin any more.
    void close();

  private:
    struct State; // shared with calls of taken that may come after the end
    Program _program;
    std::shared_ptr<State> _state;
};

} // namespace murvo::service
