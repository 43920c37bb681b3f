#include "base/Error.h"

#include <system_error>
#include <utility>

namespace brindle {

Error::Error(std::string domain, int code, std::string localizedDescription)
    : m_domain(std::move(domain)),
      m_code(code),
      m_localizedDescription(std::move(localizedDescription))
{
}

Error Error::fromErrno(int errorNumber, std::string_view subject)
{
    return {"POSIXError", errorNumber,
            std::system_error(errorNumber, std::generic_category(), std::string(subject)).what()};
}

} // namespace brindle
