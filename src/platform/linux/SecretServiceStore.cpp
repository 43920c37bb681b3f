#include "platform/linux/SecretServiceStore.h"

// No header of Qt may stand beside this one: both have a use of their own for the word "signals".
#include <libsecret/secret.h>

#include <fmt/format.h>

#include <memory>
#include <string_view>

namespace brindle {

namespace {

template <auto function>
struct Release {
    template <typename T>
    void operator()(T *value) const
    {
        function(value);
    }
};

template <typename T>
using Object = std::unique_ptr<T, Release<g_object_unref>>;
using Attributes = std::unique_ptr<GHashTable, Release<g_hash_table_unref>>;
using Value = std::unique_ptr<SecretValue, Release<secret_value_unref>>;
using Variant = std::unique_ptr<GVariant, Release<g_variant_unref>>;

struct ReleaseItems {
    void operator()(GList *items) const { g_list_free_full(items, g_object_unref); }
};
using Items = std::unique_ptr<GList, ReleaseItems>;

const SecretSchema *schema()
{
    static const SecretSchema schema = [] {
        SecretSchema result{};
        result.name = "org.freedesktop.Secret.Generic";
        result.flags = SECRET_SCHEMA_DONT_MATCH_NAME; // an item with the two attributes is the one, whoever made it
        result.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        result.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return result;
    }();
    return &schema;
}

Attributes attributesOf(const SecretKey &key)
{
    return Attributes(
        secret_attributes_build(schema(), "service", key.service.c_str(), "account", key.account.c_str(), nullptr));
}

/// Takes what glib leaves to an event loop while it lives, and does it at the end: else the leavings would keep the
/// connection to a bus that is long gone, and be done in the application's loop.
class OwnMainContext {
public:
    OwnMainContext() : m_context(g_main_context_new()) { g_main_context_push_thread_default(m_context); }
    OwnMainContext(const OwnMainContext &) = delete;
    OwnMainContext &operator=(const OwnMainContext &) = delete;
    ~OwnMainContext()
    {
        while (g_main_context_iteration(m_context, FALSE)) {
        }
        g_main_context_pop_thread_default(m_context);
        g_main_context_unref(m_context);
    }

private:
    GMainContext *m_context;
};

/// The service with an encrypted session; false where none answers.
class Service {
public:
    Service() : m_bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr))
    {
        if (!m_bus)
            return;
        g_dbus_connection_set_exit_on_close(m_bus.get(), FALSE); // else the end of the bus would be that of the process
        m_service.reset(
            secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, nullptr, nullptr));
    }

    explicit operator bool() const { return m_service != nullptr; }
    [[nodiscard]] SecretService *get() const { return m_service.get(); }

private:
    OwnMainContext m_context;
    Object<GDBusConnection> m_bus;
    Object<SecretService> m_service;
};

struct Found {
    Items items;
    bool hasFailed = false; ///< The service has not told whether there are any.
};

Found search(const Service &service, const SecretKey &key, int flags)
{
    const Attributes attributes = attributesOf(key);
    GError *failure = nullptr;
    Found found{.items = Items(secret_service_search_sync(service.get(), schema(), attributes.get(),
                                                          static_cast<SecretSearchFlags>(flags), nullptr, &failure))};
    found.hasFailed = failure != nullptr;
    g_clear_error(&failure);
    return found;
}

/// Deletes an item that is not locked. A service that would rather ask the user first keeps it.
int deleteItem(SecretItem *item)
{
    const Variant answer(
        g_dbus_proxy_call_sync(G_DBUS_PROXY(item), "Delete", nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    if (!answer)
        return SecretStore::kNotAvailable;
    const char *prompt = nullptr;
    g_variant_get(answer.get(), "(&o)", &prompt);
    return std::string_view(prompt) == "/" ? SecretStore::kDone : SecretStore::kInteractionNotAllowed;
}

} // namespace

bool SecretServiceStore::isAvailable()
{
    return static_cast<bool>(Service());
}

int SecretServiceStore::add(const SecretKey &key, const Secret &secret)
{
    const Service service;
    if (!service)
        return kNotAvailable;
    const Object<SecretCollection> collection(secret_collection_for_alias_sync(
        service.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, nullptr));
    if (!collection)
        return kNoDefaultCollection;
    if (secret_collection_get_locked(collection.get()))
        return kInteractionNotAllowed;

    const Attributes attributes = attributesOf(key);
    const std::string label = fmt::format("{}: {}", key.service, key.account);
    const Value value(secret_value_new(secret.view().data(), static_cast<gssize>(secret.view().size()), "text/plain"));
    const Object<SecretItem> item(secret_item_create_sync(collection.get(), schema(), attributes.get(), label.c_str(),
                                                          value.get(), SECRET_ITEM_CREATE_REPLACE, nullptr, nullptr));
    return item ? kDone : kNotAvailable;
}

std::optional<Secret> SecretServiceStore::find(const SecretKey &key)
{
    const Service service;
    if (!service)
        return std::nullopt;
    const Found found = search(service, key, SECRET_SEARCH_LOAD_SECRETS);
    if (!found.items)
        return std::nullopt;
    const Value value(secret_item_get_secret(SECRET_ITEM(found.items->data)));
    if (!value)
        return std::nullopt;
    gsize size = 0;
    const gchar *bytes = secret_value_get(value.get(), &size);
    return Secret({bytes, size});
}

int SecretServiceStore::remove(const SecretKey &key)
{
    const Service service;
    if (!service)
        return kNotAvailable;
    const Found found = search(service, key, SECRET_SEARCH_ALL);
    if (found.hasFailed)
        return kNotAvailable;
    int status = found.items ? kDone : kItemNotFound;
    for (const GList *node = found.items.get(); node; node = node->next) {
        SecretItem *item = SECRET_ITEM(node->data);
        const int itemStatus = secret_item_get_locked(item) ? kInteractionNotAllowed : deleteItem(item);
        if (itemStatus != kDone)
            status = itemStatus;
    }
    return status;
}

} // namespace brindle
