#pragma once

#include <QString>
#include <QStringList>

// The command-line word list as both the first instance and a hand-off produce it.
struct CommandLineRequest
{
    QString command; // last word starting with "-", empty when none
    QString fileUrl; // file: URL of the last word naming an existing file, empty when none
};

// A word starting with "-" is the command; a word naming an existing file becomes the file;
// anything else is ignored. The last of each wins.
CommandLineRequest parseCommandLineWords(const QStringList& words);

// Logs the words and emits FileHelper::openFile when a file was found. GUI thread.
void handleCommandLineWords(const QStringList& words);
