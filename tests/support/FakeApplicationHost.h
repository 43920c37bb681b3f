#pragma once

#include "platform/ApplicationHost.h"

#include <string>
#include <utility>
#include <vector>

namespace brindle {

/// A desktop that shows nothing and notes what it is asked in a journal, which several fakes may share and which
/// outlives them.
class FakeApplicationHost final : public ApplicationHost {
public:
    explicit FakeApplicationHost(std::vector<std::string> &journal) : m_journal(journal) {}

    std::vector<MenuGroup> menu;

    void setActivationPolicy(ActivationPolicy policy) override
    {
        m_journal.emplace_back(policy == ActivationPolicy::regular ? "policy regular" : "policy accessory");
    }
    void followSystemAppearance() override { m_journal.emplace_back("follow the system's appearance"); }
    void activate() override { m_journal.emplace_back("activate"); }
    void setApplicationMenu(std::vector<MenuGroup> groups) override { menu = std::move(groups); }

protected:
    void quit() override { m_journal.emplace_back("quit"); }

private:
    std::vector<std::string> &m_journal;
};

} // namespace brindle
