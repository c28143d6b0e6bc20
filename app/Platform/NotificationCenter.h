// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <map>
#include <mutex>

namespace murvo {

/// The application's own events and the keys of their user information.
namespace notifications {
inline const QString hashComputed = QStringLiteral("HashComputed");
inline const QString launchVideo = QStringLiteral("LaunchVideo");
inline const QString hashKey = QStringLiteral("hash");
} // namespace notifications

/// The process-wide exchange for the application's own events. A post calls the observers of its name at
/// once, on the posting thread, in the order in which they came. Any thread may post, add and remove.
class NotificationCenter {
  public:
    using Observer = std::function<void(const QVariantMap &userInfo)>;

    /// Keeps one observer registered for as long as it lives.
    class Registration {
      public:
        Registration() = default;
        Registration(NotificationCenter &center, int id);
        ~Registration();
        Registration(Registration &&other) noexcept;
        Registration &operator=(Registration &&other) noexcept;
        Registration(const Registration &) = delete;
        Registration &operator=(const Registration &) = delete;

      private:
        NotificationCenter *_center = nullptr;
        int _id = 0;
    };

    static NotificationCenter &defaultCenter();

    [[nodiscard]] Registration addObserver(const QString &name, Observer observer);
    void post(const QString &name, const QVariantMap &userInfo = {});

    /// Number of registered observers, for tests that look for growth.
    [[nodiscard]] std::size_t observerCount() const;

  private:
    struct Entry {
        QString name;
        Observer observer;
    };
    void remove(int id);

    mutable std::mutex _lock;
    std::map<int, Entry> _observers; // by id, so in order of registration
    int _nextId = 1;
};

} // namespace murvo
