// The property list of the settings: what is read is written and read again without a difference, and no text whatever
// makes a list that can't be read.

#include "Require.h"

#include "platform/linux/PropertyListFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

using namespace brindle;

namespace {

using Dictionary = PropertyValue::Dictionary;

/// Compared as text: a real that is no number equals nothing, itself included.
void requireSameAfterWriting(const Dictionary &values)
{
    const std::string written = writePropertyList(values);
    const auto again = readPropertyList(written);
    const PropertyList *list = std::get_if<PropertyList>(&again);
    require(list && list->isComplete, "what was written can be read");
    require(writePropertyList(list->values) == written, "read(write(x)) == x");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);

    const auto result = readPropertyList(bytes);

    if (const Error *error = std::get_if<Error>(&result)) {
        require(error->domain() == "PropertyListError", "the error's domain");
        require(!error->localizedDescription().empty(), "the error's description");
    } else {
        requireSameAfterWriting(std::get<PropertyList>(result).values);
    }
    requireSameAfterWriting({{"A" + std::string(bytes), std::string(bytes)}, {"B", true}});
    return 0;
}
