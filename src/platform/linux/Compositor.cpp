#include "platform/linux/Compositor.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace brindle {

namespace {

constexpr std::string_view kSelection = "_NET_WM_CM_S0";

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

bool hasOwner(xcb_connection_t *connection)
{
    const auto atomCookie = xcb_intern_atom(connection, 1, kSelection.size(), kSelection.data());
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, atomCookie, nullptr), &std::free);
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const auto ownerCookie = xcb_get_selection_owner(connection, atom->atom);
    const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(connection, ownerCookie, nullptr),
                                                       &std::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

bool isCompositorRunning()
{
    if (std::getenv("WAYLAND_DISPLAY"))
        return true;
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(nullptr, nullptr),
                                                                                  &xcb_disconnect);
    return !xcb_connection_has_error(connection.get()) && hasOwner(connection.get());
}

} // namespace brindle
