// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/NotificationCenter.h"

#include <utility>
#include <vector>

namespace murvo {

NotificationCenter::Registration::Registration(NotificationCenter &center, int id)
    : _center(&center)
    , _id(id) {}

NotificationCenter::Registration::~Registration() {
    if (_center)
        _center->remove(_id);
}

NotificationCenter::Registration::Registration(Registration &&other) noexcept
    : _center(std::exchange(other._center, nullptr))
    , _id(other._id) {}

NotificationCenter::Registration &NotificationCenter::Registration::operator=(Registration &&other) noexcept {
    std::swap(_center, other._center);
    std::swap(_id, other._id);
    return *this;
}

NotificationCenter &NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

NotificationCenter::Registration NotificationCenter::addObserver(const QString &name, Observer observer) {
    const std::lock_guard guard(_lock);
    const int id = _nextId++;
    _observers.emplace(id, Entry{name, std::move(observer)});
    return {*this, id};
}

void NotificationCenter::post(const QString &name, const QVariantMap &userInfo) {
    std::vector<Observer> called; // a copy, so that observers may come and go while they are called
    {
        const std::lock_guard guard(_lock);
        for (const auto &[id, entry] : _observers) {
            if (entry.name == name)
                called.push_back(entry.observer);
        }
    }
    for (const Observer &observer : called)
        observer(userInfo);
}

std::size_t NotificationCenter::observerCount() const {
    const std::lock_guard guard(_lock);
    return _observers.size();
}

void NotificationCenter::remove(int id) {
    const std::lock_guard guard(_lock);
    _observers.erase(id);
}

} // namespace murvo
