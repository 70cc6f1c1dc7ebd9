#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <unistd.h>

// Shared by the fuzz targets: the code under test takes file paths, so every input is
// written to one scratch file of this process first.
namespace FuzzInput {

// A path in the temporary folder unique to this process, with the given suffix.
inline QString scratchPath(const char* suffix)
{
    return QDir::tempPath() + QStringLiteral("/vidora-fuzz-%1%2").arg(getpid()).arg(QLatin1String(suffix));
}

// Writes the input to the scratch file; false only when the disk refuses.
inline bool store(const QString& path, const uint8_t* data, size_t size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) == static_cast<qint64>(size);
}

} // namespace FuzzInput
