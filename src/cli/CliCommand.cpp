#include "CliCommand.h"

#include <QFileInfo>
#include <QLocale>
#include <cmath>
#include <cstdio>

int CliCommand::usageError(const QCommandLineParser& parser, const QString& message)
{
    const QByteArray text = ("vidora-cli: " + message + "\n\n" + parser.helpText()).toLocal8Bit();
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
    std::fflush(stderr);
    return CliExit::Usage;
}

bool CliCommand::parseSeconds(const QString& text, double* seconds)
{
    bool ok = false;
    const double value = QLocale::c().toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(value))
        return false;
    *seconds = value;
    return true;
}

bool CliCommand::sameFile(const QString& in, const QString& out)
{
    return QFileInfo::exists(out) && QFileInfo(in).canonicalFilePath() == QFileInfo(out).canonicalFilePath();
}
