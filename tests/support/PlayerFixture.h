// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/AppDelegate.h"
#include "support/StubService.h"

#include <QJsonArray>
#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

namespace murvo::test {

/// The real controller with real windows, web engine and media library, against a stub of the web service.
/// Every test has a controller of its own; the web engine's profile and the library are shared by the
/// program.
class PlayerFixture : public testing::Test {
  public:
    ~PlayerFixture() override;

  protected:
    PlayerFixture();

    /// Starts the controller and waits until the home page has said that it is ready.
    void startAtHome();
    /// startAtHome(), then takes the film in and waits until it plays and its page has loaded.
    void startFilm(const QString &path);

    /// Result of a script in the player page, or in the home page, as text.
    [[nodiscard]] QString inPlayerPage(const QString &script) const;
    [[nodiscard]] QString inHomePage(const QString &script) const;
    /// Sends a page request from the player page, in the way pages do it.
    void playerPageSends(const QString &url) const;
    void homePageSends(const QString &url) const;
    /// Names of the events that the player page has received so far, in order; "timeUpdate" left out.
    [[nodiscard]] QStringList playerPageEvents() const;
    /// Answers to the guid: the payloads as JSON text, in order.
    [[nodiscard]] QStringList answersTo(const QString &guid) const;

    /// The home page is on the screen, with no loader over it.
    [[nodiscard]] bool isHomeShown() const;
    [[nodiscard]] bool isFilmShown() const;
    /// The alert on the screen, null without one.
    [[nodiscard]] static QMessageBox *alert();

    StubService stub;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace murvo::test
