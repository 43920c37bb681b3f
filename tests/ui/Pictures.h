#pragma once

#include <QDir>
#include <QImage>

#include <string>

namespace brindle {

/// Keeps \a picture in the folder that BRINDLE_SCREENSHOTS names, where it names one.
inline void keepPicture(const QImage &picture, const std::string &name)
{
    const QString folder = qEnvironmentVariable("BRINDLE_SCREENSHOTS");
    if (!folder.isEmpty())
        picture.save(QDir(folder).filePath(QString::fromStdString(name + ".png")));
}

} // namespace brindle
