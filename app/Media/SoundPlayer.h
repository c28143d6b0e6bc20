// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QObject>

#include <memory>

namespace murvo {

class VLCInstance;
class VLCMediaPlayer;

/// Plays one short sound from memory, such as a spoken word. Main thread only; the sound ends with the
/// player.
class SoundPlayer : public QObject {
    Q_OBJECT

  public:
    /// The instance is borrowed and must outlive the sound.
    SoundPlayer(const VLCInstance &instance, QByteArray data, QObject *parent = nullptr);
    ~SoundPlayer() override;

    void play();

  Q_SIGNALS:
    /// The data is no sound that can be played.
    void failed(const QString &description);

  private:
    std::unique_ptr<VLCMediaPlayer> _player;
};

} // namespace murvo
