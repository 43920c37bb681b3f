#include "platform/linux/TreeCopy.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <linux/limits.h>
#include <sys/xattr.h>

namespace brindle {

namespace {

/// The file system has no such thing, or it is not the user's to set. FAT says both of permissions.
bool saysNotHeld(int errorNumber)
{
    return errorNumber == EPERM || errorNumber == EOPNOTSUPP || errorNumber == EACCES || errorNumber == ENOSYS;
}

// Without set-user and set-group, which would give the rights of the copying user and not of the file's owner.
constexpr mode_t kKeptPermissions = S_IRWXU | S_IRWXG | S_IRWXO | S_ISVTX;

} // namespace

/// All but the content. Attributes go first: they can't be written once the permissions forbid it. Times go last.
void TreeCopy::copyQualities(int from, int to, const struct stat &status)
{
    copyAttributes(from, to);
    if (::fchmod(to, status.st_mode & kKeptPermissions) != 0 && !saysNotHeld(errno))
        throw Error::fromErrno(errno, m_to);
    copyTimes(to, status);
}

void TreeCopy::copyAttributes(int from, int to)
{
    m_attributeNames.resize(XATTR_LIST_MAX);
    const ssize_t size = ::flistxattr(from, m_attributeNames.data(), m_attributeNames.size());
    if (size < 0) {
        if (saysNotHeld(errno))
            return;
        throw Error::fromErrno(errno, m_from);
    }
    const char *const end = m_attributeNames.data() + size;
    for (const char *name = m_attributeNames.data(); name < end; name += std::strlen(name) + 1)
        copyAttribute(from, to, name);
}

void TreeCopy::copyAttribute(int from, int to, const char *name)
{
    m_attributeValue.resize(XATTR_SIZE_MAX);
    const ssize_t size = ::fgetxattr(from, name, m_attributeValue.data(), m_attributeValue.size());
    if (size < 0) {
        if (saysNotHeld(errno) || errno == ENODATA) // taken away meanwhile
            return;
        throw Error::fromErrno(errno, m_from);
    }
    if (::fsetxattr(to, name, m_attributeValue.data(), static_cast<std::size_t>(size), 0) != 0 && !saysNotHeld(errno))
        throw Error::fromErrno(errno, m_to);
}

void TreeCopy::copyTimes(int to, const struct stat &status) const
{
    const std::array times{status.st_atim, status.st_mtim};
    if (::futimens(to, times.data()) != 0 && !saysNotHeld(errno))
        throw Error::fromErrno(errno, m_to);
}

} // namespace brindle
