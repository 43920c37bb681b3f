#include "support/ChildOfTest.h"

#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <QThreadPool>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <iterator>

namespace brindle {

namespace {

constexpr uid_t kNobody = 65534;

}

void endOtherThreads()
{
    using Threads = std::filesystem::directory_iterator;
    QThreadPool::globalInstance()->waitForDone();
    waitUntil([] { return std::distance(Threads("/proc/self/task"), Threads()) == 1; });
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
