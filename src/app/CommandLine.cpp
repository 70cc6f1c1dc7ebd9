#include "CommandLine.h"

#include "FileHelper.h"

#include <QFileInfo>
#include <QUrl>
#include <spdlog/spdlog.h>

CommandLineRequest parseCommandLineWords(const QStringList& words)
{
    CommandLineRequest request;
    for (const QString& word : words) {
        if (word.startsWith(QLatin1Char('-'))) {
            request.command = word;
        } else if (!word.isEmpty()) {
            const QString local = FileHelper::toLocalPath(word);
            if (QFileInfo(local).isFile())
                request.fileUrl = QUrl::fromLocalFile(QFileInfo(local).absoluteFilePath()).toString();
        }
    }
    return request;
}

void handleCommandLineWords(const QStringList& words)
{
    spdlog::debug("list:{}", words.join(QLatin1Char(',')).toStdString());
    const CommandLineRequest request = parseCommandLineWords(words);
    if (request.fileUrl.isEmpty())
        return;
    spdlog::info("openFile: command={} file={}", request.command.toStdString(), request.fileUrl.toStdString());
    emit FileHelper::instance()->openFile(request.command, request.fileUrl);
}
