#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// What the readers of the tools' text look for, again and again. Each look takes time in proportion to the text.
namespace brindle::ToolText {

/// The label of the folder that `diskutil info` says a volume is mounted at.
inline constexpr std::string_view kMountPointLabel = "Mount Point:";

inline constexpr std::string_view kDeviceFolder = "/dev/";

/// How the header of a disk begins in `diskutil list`, "/dev/disk2 (external, physical):", and its line in `df`.
inline constexpr std::string_view kDiskDevice = "/dev/disk";

/// The value of a line "Label: value": \a line without every occurrence of \a label, trimmed. Nullopt where \a line
/// does not begin with \a label.
[[nodiscard]] std::optional<std::string> valueOf(std::string_view line, std::string_view label);

/// Whether a value says something: it is neither empty nor exactly "Not applicable".
[[nodiscard]] bool isGiven(std::string_view value);

/// The first place where \a stem, \a infix and then at least one digit follow one another, with all of the digits:
/// "disk12" for "disk" in "(disk12)".
[[nodiscard]] std::optional<std::string_view> numbered(std::string_view text, std::string_view stem,
                                                       std::string_view infix = {});

/// The first partition of \a disk that \a text names: "disk2s1" for "disk2".
[[nodiscard]] std::optional<std::string_view> partitionIn(std::string_view text, std::string_view disk);

/// The whole disk of the first "Container diskN" in \a line.
[[nodiscard]] std::optional<std::string_view> containerIn(std::string_view line);

/// Whether a line of a partition map shows an EFI partition.
[[nodiscard]] bool isEFILine(std::string_view line);

/// Where the first size begins, such as "500.3 GB": digits, which a point and more digits may follow, blanks, and one
/// of the units GB, MB, TB and KB.
[[nodiscard]] std::optional<std::size_t> positionOfSize(std::string_view text);

/// A list that takes each text once, in the order of first appearance.
class DistinctTexts {
public:
    void add(std::string_view text);

    [[nodiscard]] const std::vector<std::string> &list() const { return m_list; }
    [[nodiscard]] bool contains(std::string_view text) const { return m_known.contains(text); }

private:
    std::vector<std::string> m_list;
    std::set<std::string, std::less<>> m_known;
};

} // namespace brindle::ToolText
