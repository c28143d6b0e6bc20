// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/X11SizeHints.h"

#include <QGuiApplication>

#include <xcb/xcb_icccm.h>

#include <cstdlib>
#include <memory>

namespace murvo {

namespace {

xcb_size_hints_t currentHints(xcb_connection_t *connection, xcb_window_t window) {
    xcb_size_hints_t hints{};
    xcb_icccm_get_wm_normal_hints_reply(connection, xcb_icccm_get_wm_normal_hints(connection, window), &hints,
                                        nullptr);
    return hints;
}

bool areSame(const xcb_size_hints_t &a, const xcb_size_hints_t &b) {
    return a.flags == b.flags && a.min_aspect_num == b.min_aspect_num &&
           a.min_aspect_den == b.min_aspect_den && a.base_width == b.base_width &&
           a.base_height == b.base_height;
}

} // namespace

void setContentAspectHint(const QWindow &window, const QSize &aspect, const QSize &base) {
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !window.handle())
        return;
    const auto id = static_cast<xcb_window_t>(window.winId());
    const xcb_size_hints_t old = currentHints(x11->connection(), id);
    xcb_size_hints_t hints = old;
    if (aspect.isEmpty()) {
        hints.flags &= ~static_cast<uint32_t>(XCB_ICCCM_SIZE_HINT_P_ASPECT);
    } else {
        xcb_icccm_size_hints_set_aspect(&hints, aspect.width(), aspect.height(), aspect.width(),
                                        aspect.height());
        xcb_icccm_size_hints_set_base_size(&hints, base.width(), base.height());
    }
    if (!areSame(old, hints))
        xcb_icccm_set_wm_normal_hints(x11->connection(), id, &hints);
    xcb_flush(x11->connection());
}

bool isSizeHintsChange(const QWindow &window, const void *nativeEvent) {
    if (!qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        return false;
    constexpr uint8_t sentFlag = 0x80;
    const auto *event = static_cast<const xcb_generic_event_t *>(nativeEvent);
    if ((event->response_type & ~sentFlag) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto *change = reinterpret_cast<const xcb_property_notify_event_t *>(event);
    return change->atom == XCB_ATOM_WM_NORMAL_HINTS &&
           change->window == static_cast<xcb_window_t>(window.winId());
}

} // namespace murvo
