#include "records/ToolPaths.h"

#include <utility>

namespace brindle {

namespace {

std::string withoutFinalSlashes(std::string folder)
{
    folder.erase(folder.find_last_not_of('/') + 1);
    return folder;
}

} // namespace

ToolPaths ToolPaths::system()
{
    return {"", ""};
}

ToolPaths ToolPaths::underRoot(std::string root)
{
    return {root, root};
}

ToolPaths ToolPaths::withSuppliedTools(std::string libexecDirectory)
{
    return {std::move(libexecDirectory), ""};
}

ToolPaths::ToolPaths(std::string diskToolRoot, std::string systemToolRoot)
    : m_diskToolRoot(withoutFinalSlashes(std::move(diskToolRoot))),
      m_systemToolRoot(withoutFinalSlashes(std::move(systemToolRoot)))
{
}

std::string ToolPaths::diskutil() const
{
    return m_diskToolRoot + "/usr/sbin/diskutil";
}

std::string ToolPaths::df() const
{
    return m_diskToolRoot + "/bin/df";
}

std::string ToolPaths::nvram() const
{
    return m_diskToolRoot + "/usr/sbin/nvram";
}

std::string ToolPaths::systemProfiler() const
{
    return m_diskToolRoot + "/usr/sbin/system_profiler";
}

std::string ToolPaths::sudo() const
{
    return m_systemToolRoot + "/usr/bin/sudo";
}

std::string ToolPaths::open() const
{
    return m_systemToolRoot + "/usr/bin/open";
}

} // namespace brindle
