// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vlc/vlc.h>

#include <memory>

namespace murvo {

/// libVLC's handles with the operations that release them. Only files of this folder include this header.
struct VLCReleaser {
    void operator()(libvlc_instance_t *handle) const { libvlc_release(handle); }
    void operator()(libvlc_media_t *handle) const { libvlc_media_release(handle); }
    void operator()(libvlc_media_player_t *handle) const { libvlc_media_player_release(handle); }
    void operator()(libvlc_track_description_t *list) const { libvlc_track_description_list_release(list); }
};

template<typename Handle>
using VLCHandle = std::unique_ptr<Handle, VLCReleaser>;

/// An attached callback. It is detached by the destructor, which waits for callbacks that run.
/// The callback is called on libVLC's threads and must not call libVLC.
class VLCEventSubscription {
  public:
    VLCEventSubscription(libvlc_event_manager_t *manager, libvlc_event_type_t type,
                         libvlc_callback_t callback, void *data)
        : _manager(manager)
        , _type(type)
        , _callback(callback)
        , _data(data) {
        libvlc_event_attach(manager, type, callback, data);
    }
    ~VLCEventSubscription() { libvlc_event_detach(_manager, _type, _callback, _data); }
    VLCEventSubscription(const VLCEventSubscription &) = delete;
    VLCEventSubscription &operator=(const VLCEventSubscription &) = delete;

  private:
    libvlc_event_manager_t *_manager;
    libvlc_event_type_t _type;
    libvlc_callback_t _callback;
    void *_data;
};

} // namespace murvo
