// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

struct libvlc_instance_t;

namespace murvo {

/// The media library, loaded once and shared by all players. Its messages go to the log. Made and destroyed
/// on the main thread, after every player is gone.
class VLCInstance {
  public:
    VLCInstance();
    ~VLCInstance();
    VLCInstance(const VLCInstance &) = delete;
    VLCInstance &operator=(const VLCInstance &) = delete;

    /// False when the library or its plugins cannot be loaded; nothing can be played then.
    [[nodiscard]] bool isUsable() const;

    /// Borrowed; null when unusable.
    [[nodiscard]] libvlc_instance_t *handle() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> _impl;
};

} // namespace murvo
