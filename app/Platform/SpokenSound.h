// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Platform/HttpClient.h"

#include <QObject>

#include <memory>

namespace murvo {

class SoundPlayer;
class VLCInstance;

/// Plays short sounds, such as a spoken word, from HTTP addresses. A sound that has been fetched replaces the
/// one that plays, unless one asked for later has been fetched before it. Failures are told to the log only.
/// Main thread only.
class SpokenSound : public QObject {
    Q_OBJECT

  public:
    /// The library is borrowed and must outlive the object.
    explicit SpokenSound(const VLCInstance &vlc, QObject *parent = nullptr);
    ~SpokenSound() override;

    /// Fetches in the background. The address may be percent-encoded as a whole.
    void play(const QString &encodedUrl);

  private:
    void playData(const QByteArray &data, unsigned number);

    const VLCInstance &_vlc;
    HttpClient _connections;
    unsigned _lastAsked = 0;
    unsigned _lastPlayed = 0;
    std::unique_ptr<SoundPlayer> _avPlayer; // the last sound; a new one replaces it
};

} // namespace murvo
