#include "support/ChildOfTest.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace brindle {

namespace {

constexpr uid_t kNobody = 65534;

}

pid_t startChild(const std::function<void()> &body)
{
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == -1)
        ADD_FAILURE() << "can't fork";
    if (child != 0)
        return child;
    body();
    std::fflush(nullptr);
    ::_exit(testing::Test::HasFailure() ? 1 : 0);
}

int endOf(pid_t child)
{
    int status = 0;
    if (::waitpid(child, &status, 0) != child)
        ADD_FAILURE() << "no such child";
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

WithoutRootsRights::WithoutRootsRights(const std::filesystem::path &folder) : m_wasRoot(::geteuid() == 0)
{
    if (m_wasRoot && (::chown(folder.c_str(), kNobody, kNobody) == -1 || ::seteuid(kNobody) == -1))
        ADD_FAILURE() << "can't become nobody";
}

WithoutRootsRights::~WithoutRootsRights()
{
    if (m_wasRoot && ::seteuid(0) == -1)
        ADD_FAILURE() << "can't become root again";
}

} // namespace brindle
