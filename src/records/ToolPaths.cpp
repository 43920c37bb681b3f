#include "records/ToolPaths.h"

#include <utility>

namespace brindle {

ToolPaths::ToolPaths(std::string disksRoot, std::string systemRoot)
    : m_disksRoot(std::move(disksRoot)),
      m_systemRoot(std::move(systemRoot))
{
}

ToolPaths ToolPaths::system()
{
    return {"", ""};
}

ToolPaths ToolPaths::underRoot(const std::string &root)
{
    return {root, root};
}

ToolPaths ToolPaths::withSuppliedTools(const std::string &folder)
{
    return {folder, ""};
}

} // namespace brindle
