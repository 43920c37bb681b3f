#include "FakeRoot.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

namespace brindle::tools {

FakeRoot::FakeRoot()
{
    std::string pattern = std::filesystem::temp_directory_path() / "brindle-hardware-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    m_path = pattern;
}

FakeRoot::~FakeRoot()
{
    std::filesystem::remove_all(m_path);
}

FakeRoot &FakeRoot::with(const std::filesystem::path &file, std::string_view bytes)
{
    std::filesystem::create_directories((m_path / file).parent_path());
    std::ofstream(m_path / file, std::ios::binary) << bytes;
    return *this;
}

} // namespace brindle::tools
