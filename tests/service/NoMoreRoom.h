// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>

namespace murvo::service::test {

/// While it lives no file of this process grows beyond that size, whoever runs it: what is tried fails as on
/// a full disk.
class NoMoreRoom {
  public:
    explicit NoMoreRoom(qint64 bytes) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &_before), 0);
        rlimit less = _before;
        less.rlim_cur = static_cast<rlim_t>(bytes);
        _handler = std::signal(SIGXFSZ, SIG_IGN);
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &less), 0);
    }
    ~NoMoreRoom() {
        ::setrlimit(RLIMIT_FSIZE, &_before);
        std::signal(SIGXFSZ, _handler);
    }
    NoMoreRoom(const NoMoreRoom &) = delete;
    NoMoreRoom &operator=(const NoMoreRoom &) = delete;

  private:
    rlimit _before{};
    void (*_handler)(int) = nullptr;
};

} // namespace murvo::service::test
