// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace murvo::service {

/// The disk took no more: nothing of the work that threw it was kept.
class DiskFull : public std::runtime_error {
  public:
    DiskFull()
        : std::runtime_error("the disk is full") {}
};

} // namespace murvo::service
