#pragma once

#include "platform/Workspace.h"

#include <string>
#include <vector>

namespace brindle {

/// Opens nothing and notes "open PATH" in a journal, which several fakes may share and which outlives them.
class FakeWorkspace : public Workspace {
public:
    explicit FakeWorkspace(std::vector<std::string> &journal) : m_journal(journal) {}

    void openFile(const std::string &path) override { m_journal.push_back("open " + path); }

private:
    std::vector<std::string> &m_journal;
};

} // namespace brindle
