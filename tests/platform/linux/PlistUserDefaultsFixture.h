#pragma once

#include "platform/linux/PlistUserDefaults.h"
#include "platform/linux/PropertyListFile.h"
#include "support/Fixtures.h"
#include "support/LogCapture.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// A folder for the settings of one test, and the log's lines.
class PlistUserDefaultsFixture {
protected:
    [[nodiscard]] std::filesystem::path folder() const { return m_folder.path().toStdString(); }
    [[nodiscard]] std::filesystem::path file() const { return folder() / "com.orlane.Brindle.plist"; }
    [[nodiscard]] const std::vector<std::string> &log() const { return m_log.lines(); }

    /// What the file holds, read without a store; a file that is no property list fails the test.
    [[nodiscard]] PropertyValue::Dictionary valuesInFile() const
    {
        auto result = readPropertyList(contentsOf(file()));
        if (const Error *error = std::get_if<Error>(&result)) {
            ADD_FAILURE() << error->localizedDescription();
            return {};
        }
        return std::get<PropertyList>(result).values;
    }

    void writeFile(std::string_view bytes) const { std::ofstream(file(), std::ios::binary) << bytes; }

    void writeFile(const PropertyValue::Dictionary &values) const { writeFile(writePropertyList(values)); }

    /// Names of the files beside the property list, without its lock.
    [[nodiscard]] std::vector<std::string> otherFiles() const
    {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(folder())) {
            if (entry.path() != file() && entry.path().extension() != ".lock")
                names.push_back(entry.path().filename().string());
        }
        return names;
    }

private:
    QTemporaryDir m_folder;
    LogCapture m_log;
};

} // namespace brindle
