// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/X11WindowManager.h"

#include <QGuiApplication>

#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace murvo {

namespace {

/// Null on other platforms.
const QNativeInterface::QX11Application *x11() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
}

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

template<typename Reply>
using ReplyPtr = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_atom_t atom(xcb_connection_t *connection, std::string_view name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data());
    const ReplyPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr),
                                                  &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// The property of the window that the event says has changed, or none.
xcb_atom_t changedProperty(const QWindow &window, const void *nativeEvent) {
    constexpr uint8_t sentFlag = 0x80;
    const auto *event = static_cast<const xcb_generic_event_t *>(nativeEvent);
    if ((event->response_type & ~sentFlag) != XCB_PROPERTY_NOTIFY)
        return XCB_ATOM_NONE;
    const auto *change = reinterpret_cast<const xcb_property_notify_event_t *>(event);
    return change->window == static_cast<xcb_window_t>(window.winId())
               ? change->atom
               : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

xcb_window_t rootWindow(xcb_connection_t *connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_client_message_event_t clientMessage(xcb_window_t window, xcb_atom_t type, uint8_t format) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = format;
    message.window = window;
    message.type = type;
    return message;
}

void sendToRoot(xcb_connection_t *connection, const xcb_client_message_event_t &message, uint32_t mask) {
    xcb_send_event(connection, 0, rootWindow(connection), mask, reinterpret_cast<const char *>(&message));
}

} // namespace

void activateForUser(QWindow &window) {
    const auto *application = x11();
    if (!application) {
        window.requestActivate();
        return;
    }
    constexpr uint32_t fromTheUser = 2;
    xcb_connection_t *connection = application->connection();
    auto message =
        clientMessage(static_cast<xcb_window_t>(window.winId()), atom(connection, "_NET_ACTIVE_WINDOW"), 32);
    message.data.data32[0] = fromTheUser;
    message.data.data32[1] = XCB_CURRENT_TIME;
    sendToRoot(connection, message,
               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    xcb_flush(connection);
}

void endStartupNotification(const QByteArray &identifier) {
    const auto *application = x11();
    if (!application || identifier.isEmpty())
        return;
    QByteArray quoted = identifier;
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    const QByteArray text = "remove: ID=\"" + quoted + '"' + '\0';
    xcb_connection_t *connection = application->connection();
    // The messages are told apart by a window that need not be on the screen.
    const xcb_window_t sender = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, sender, rootWindow(connection), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    auto message = clientMessage(sender, atom(connection, "_NET_STARTUP_INFO_BEGIN"), 8);
    constexpr qsizetype bytesPerMessage = sizeof message.data.data8;
    for (qsizetype sent = 0; sent < text.size(); sent += bytesPerMessage) {
        const QByteArray piece = text.mid(sent, bytesPerMessage).leftJustified(bytesPerMessage, '\0');
        std::copy(piece.cbegin(), piece.cend(), std::begin(message.data.data8));
        sendToRoot(connection, message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = atom(connection, "_NET_STARTUP_INFO");
    }
    xcb_destroy_window(connection, sender);
    xcb_flush(connection);
}

void setContentAspectHint(const QWindow &window, const QSize &aspect, const QSize &base) {
    const auto *application = x11();
    if (!application || !window.handle())
        return;
    const auto id = static_cast<xcb_window_t>(window.winId());
    const xcb_size_hints_t old = currentHints(application->connection(), id);
    xcb_size_hints_t hints = old;
    if (aspect.isEmpty()) {
        hints.flags &= ~static_cast<uint32_t>(XCB_ICCCM_SIZE_HINT_P_ASPECT);
    } else {
        xcb_icccm_size_hints_set_aspect(&hints, aspect.width(), aspect.height(), aspect.width(),
                                        aspect.height());
        xcb_icccm_size_hints_set_base_size(&hints, base.width(), base.height());
    }
    if (!areSame(old, hints))
        xcb_icccm_set_wm_normal_hints(application->connection(), id, &hints);
    xcb_flush(application->connection());
}

bool isDesktopComposited() {
    const auto *application = x11();
    if (!application)
        return true;
    int screen = 0;
    char *host = nullptr;
    int display = 0;
    xcb_parse_display(nullptr, &host, &display, &screen);
    std::free(host);
    xcb_connection_t *connection = application->connection();
    const xcb_atom_t manager = atom(connection, "_NET_WM_CM_S" + std::to_string(screen));
    const ReplyPtr<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, manager), nullptr),
        &std::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
}

bool isSizeHintsChange(const QWindow &window, const void *nativeEvent) {
    return x11() && changedProperty(window, nativeEvent) == XCB_ATOM_WM_NORMAL_HINTS;
}

bool isFrameChange(const QWindow &window, const void *nativeEvent) {
    const auto *application = x11();
    if (!application)
        return false;
    static const xcb_atom_t frameExtents = atom(application->connection(), "_NET_FRAME_EXTENTS");
    return frameExtents != XCB_ATOM_NONE && changedProperty(window, nativeEvent) == frameExtents;
}

} // namespace murvo
