// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/XWindow.h"

#include "support/XTools.h"

#include <QGuiApplication>
#include <QStringList>

#include <xcb/xcb.h>
#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace murvo::test {

namespace {

struct Free {
    void operator()(void *reply) const { std::free(reply); } // NOLINT(cppcoreguidelines-no-malloc)
};
template<typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

xcb_connection_t *server() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

xcb_window_t rootWindow() {
    return xcb_setup_roots_iterator(xcb_get_setup(server())).data->root;
}

xcb_atom_t atom(const char *name) {
    const auto length = static_cast<quint16>(qstrlen(name));
    const Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(server(), xcb_intern_atom(server(), 0, length, name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

Owned<xcb_get_property_reply_t> property(xcb_window_t window, const char *name) {
    constexpr quint32 longest = 1024;
    const auto cookie =
        xcb_get_property(server(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longest);
    return Owned<xcb_get_property_reply_t>(xcb_get_property_reply(server(), cookie, nullptr));
}

Owned<xcb_query_tree_reply_t> tree(xcb_window_t window) {
    return Owned<xcb_query_tree_reply_t>(
        xcb_query_tree_reply(server(), xcb_query_tree(server(), window), nullptr));
}

/// As the X server stacks them, bottom to top.
QList<quint32> childrenOfRoot() {
    const auto reply = tree(rootWindow());
    const auto *first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

/// The window itself, or the frame that it lies in.
quint32 ancestorOnRoot(quint32 window) {
    auto reply = tree(window);
    while (reply && reply->parent != rootWindow()) {
        window = reply->parent;
        reply = tree(window);
    }
    return window;
}

void wmctrl(const char *action, quint32 id, const QStringList &more = {}) {
    run(QStringLiteral("wmctrl"), QStringList{QStringLiteral("-i"), QString::fromLatin1(action),
                                              QStringLiteral("0x%1").arg(id, 0, 16)} +
                                      more);
}

} // namespace

QList<quint32> XWindow::values(const char *name) const {
    const auto reply = property(_id, name);
    if (!reply || reply->format != 32)
        return {};
    const auto *first = static_cast<const quint32 *>(xcb_get_property_value(reply.get()));
    return {first, first + xcb_get_property_value_length(reply.get()) / 4};
}

QList<XWindow> XWindow::ofProcess(qint64 pid) {
    QList<XWindow> found;
    const QList<quint32> all = XWindow(rootWindow()).values("_NET_CLIENT_LIST");
    for (const quint32 id : all) {
        if (XWindow(id).values("_NET_WM_PID").value(0) == pid)
            found.append(XWindow(id));
    }
    const QList<quint32> onRoot = childrenOfRoot();
    std::stable_sort(found.begin(), found.end(), [&](const XWindow &a, const XWindow &b) {
        return onRoot.indexOf(ancestorOnRoot(a.id())) < onRoot.indexOf(ancestorOnRoot(b.id()));
    });
    return found;
}

XWindow XWindow::active() {
    return XWindow(XWindow(rootWindow()).values("_NET_ACTIVE_WINDOW").value(0));
}

QString XWindow::title() const {
    const auto reply = property(_id, "_NET_WM_NAME");
    return reply ? QString::fromUtf8(static_cast<const char *>(xcb_get_property_value(reply.get())),
                                     xcb_get_property_value_length(reply.get()))
                 : QString();
}

QRect XWindow::geometry() const {
    const Owned<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(server(), xcb_get_geometry(server(), _id), nullptr));
    const Owned<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
        server(), xcb_translate_coordinates(server(), _id, rootWindow(), 0, 0), nullptr));
    return size && place ? QRect(place->dst_x, place->dst_y, size->width, size->height) : QRect();
}

QMargins XWindow::frame() const {
    const QList<quint32> sides = values("_NET_FRAME_EXTENTS"); // left, right, top, bottom
    if (sides.size() != 4)
        return {};
    return {static_cast<int>(sides[0]), static_cast<int>(sides[2]), static_cast<int>(sides[1]),
            static_cast<int>(sides[3])};
}

bool XWindow::isViewable() const {
    const Owned<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(server(), xcb_get_window_attributes(server(), _id), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XWindow::isDialog() const {
    return values("_NET_WM_WINDOW_TYPE").value(0) == atom("_NET_WM_WINDOW_TYPE_DIALOG");
}

bool XWindow::hasState(const char *atomName) const {
    return values("_NET_WM_STATE").contains(atom(atomName));
}

XWindow XWindow::transientFor() const {
    return XWindow(values("WM_TRANSIENT_FOR").value(0));
}

QSize XWindow::aspect() const {
    xcb_size_hints_t hints;
    if (!xcb_icccm_get_wm_normal_hints_reply(server(), xcb_icccm_get_wm_normal_hints(server(), _id), &hints,
                                             nullptr))
        return {};
    return (hints.flags & XCB_ICCCM_SIZE_HINT_P_ASPECT) != 0
               ? QSize(hints.min_aspect_num, hints.min_aspect_den)
               : QSize();
}

void XWindow::close() const {
    wmctrl("-c", _id);
}

void XWindow::activate() const {
    wmctrl("-a", _id);
}

void XWindow::minimise() const {
    run(QStringLiteral("xdotool"), {QStringLiteral("windowminimize"), QString::number(_id)});
}

void XWindow::moveTo(const QPoint &position) const {
    wmctrl("-r", _id,
           {QStringLiteral("-e"), QStringLiteral("0,%1,%2,-1,-1").arg(position.x()).arg(position.y())});
}

void XWindow::resize(const QSize &size) const {
    wmctrl("-r", _id,
           {QStringLiteral("-e"), QStringLiteral("0,-1,-1,%1,%2").arg(size.width()).arg(size.height())});
}

} // namespace murvo::test
