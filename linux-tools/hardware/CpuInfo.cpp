#include "hardware/CpuInfo.h"

#include "hardware/Believable.h"

#include "text/LineReading.h"
#include "text/Words.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

namespace brindle::tools {
namespace {

std::string without(std::string_view text, std::string_view word)
{
    std::string result(text);
    for (std::size_t at = result.find(word); at != std::string::npos; at = result.find(word, at))
        result.erase(at, word.size());
    return result;
}

std::vector<std::string_view> wordsOf(std::string_view text)
{
    std::vector<std::string_view> words;
    while (!(text = trimmed(text)).empty()) {
        const std::size_t length = std::min(text.find(' '), text.size());
        words.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return words;
}

/// Whether a word of a model's name tells what the other lines tell, or nothing.
bool isFiller(std::string_view word)
{
    return word == "CPU" || word == "Processor" || word.ends_with("-Core");
}

/// The number before "GHz" or "MHz" behind the name's "@"; 0 without one.
std::uint64_t megahertzIn(std::string_view modelName)
{
    const std::size_t at = modelName.find('@');
    if (at == std::string_view::npos)
        return 0;
    const std::string_view text = trimmed(modelName.substr(at + 1));
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    const std::string_view unit = trimmed({result.ptr, text.data() + text.size()});
    const double megahertz = unit == "GHz" ? number * 1000 : unit == "MHz" ? number : 0;
    return megahertz > 0 && megahertz < static_cast<double>(kMostMegahertz)
               ? static_cast<std::uint64_t>(std::lround(megahertz))
               : 0;
}

struct Line {
    std::string_view key;
    std::string_view value;
};

Line split(std::string_view line)
{
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos)
        return {};
    return {trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1))};
}

} // namespace

std::string shortProcessorName(std::string_view modelName)
{
    std::string name(modelName.substr(0, modelName.find('@')));
    for (const std::string_view mark : {"(R)", "(r)", "(TM)", "(tm)"})
        name = without(name, mark);
    std::string shortName;
    const std::vector<std::string_view> words = wordsOf(name);
    for (const std::string_view word : words)
        if (!isFiller(word))
            shortName.append(shortName.empty() ? "" : " ").append(word);
    return shortName.empty() ? std::string(trimmed(modelName)) : shortName;
}

Processor readCpuInfo(std::string_view cpuInfo)
{
    Processor processor;
    std::uint64_t threads = 0;
    std::string_view package;
    std::set<std::string_view> packages;
    std::set<std::pair<std::string_view, std::string_view>> cores;
    while (!cpuInfo.empty()) {
        const Line line = split(takeLine(cpuInfo));
        if (line.key == "processor") {
            ++threads;
        } else if (line.key == "model name" && processor.name.empty()) {
            processor.name = shortProcessorName(line.value);
            processor.speedMegahertz = megahertzIn(line.value);
        } else if (line.key == "physical id") {
            package = *packages.insert(line.value).first;
        } else if (line.key == "core id") {
            cores.emplace(package, line.value);
        }
    }
    processor.packages = packages.empty() ? std::min<std::uint64_t>(threads, 1) : packages.size();
    processor.cores = cores.empty() ? threads : cores.size();
    return processor;
}

} // namespace brindle::tools
