#include "platform/linux/Compositor.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <cstdlib>
#include <utility>

namespace brindle {

namespace {

constexpr std::string_view kSelection = "_NET_WM_CM_S0";
constexpr std::uint8_t kSentByClient = 0x80; // in the type of an event
constexpr std::uint32_t kChangesOfOwner = XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE;

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

xcb_atom_t selection(xcb_connection_t *connection)
{
    const auto cookie = xcb_intern_atom(connection, 0, kSelection.size(), kSelection.data());
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return atom ? atom->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// The type of the event that tells of a new owner of \a selection from now on; nullopt where the server knows none.
std::optional<std::uint8_t> askForChanges(xcb_connection_t *connection, xcb_atom_t selection)
{
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!extension || !extension->present)
        return std::nullopt;
    const auto cookie = xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    const Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(connection, cookie, nullptr),
                                                          &std::free); // the server wants to be asked first
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_xfixes_select_selection_input(connection, root, selection, kChangesOfOwner);
    return static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
}

bool hasOwner(xcb_connection_t *connection, xcb_atom_t selection)
{
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(connection, cookie, nullptr),
                                                       &std::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

Compositor::Compositor(std::string_view platform)
    : m_isRunning(platform.starts_with("wayland")),
      m_connection(platform == "xcb" ? xcb_connect(nullptr, nullptr) : nullptr, &xcb_disconnect)
{
    if (m_connection && !xcb_connection_has_error(m_connection.get()))
        watchSelection();
}

void Compositor::watchSelection()
{
    const xcb_atom_t watched = selection(m_connection.get());
    if (const auto event = askForChanges(m_connection.get(), watched)) {
        m_selectionEvent = *event;
        m_notifier.emplace(xcb_get_file_descriptor(m_connection.get()), QSocketNotifier::Read);
        connect(&*m_notifier, &QSocketNotifier::activated, this, &Compositor::readEvents);
    }
    m_isRunning = hasOwner(m_connection.get(), watched);
    readEvents(); // those that have come before that reply
}

void Compositor::readEvents()
{
    while (const auto event = Reply<xcb_generic_event_t>(xcb_poll_for_event(m_connection.get()), &std::free)) {
        if ((event->response_type & ~kSentByClient) == m_selectionEvent)
            setIsRunning(reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(*event).owner !=
                         XCB_WINDOW_NONE);
    }
    if (m_notifier && xcb_connection_has_error(m_connection.get()))
        m_notifier->setEnabled(false); // the server has gone
}

void Compositor::setIsRunning(bool isRunning)
{
    if (std::exchange(m_isRunning, isRunning) != isRunning)
        Q_EMIT isRunningChanged();
}

} // namespace brindle
