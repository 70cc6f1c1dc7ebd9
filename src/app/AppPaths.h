#pragma once

#include <QString>

// Where the program reads the files it ships with and writes the user's data.
//
// Run from its build folder (a folder of its own that holds config.json beside the
// executable), everything stays in that folder as it always has: history there, settings
// there, screenshots in the temporary folder. An installed copy (the executable sits in a
// prefix whose data folder holds the shipped files, or its own folder is not writable)
// reads those files from the prefix and writes per user where the XDG base directories say,
// so a read-only /usr loses nothing and two users never share a file.
struct AppPaths
{
    bool installed = false;
    // The folder start-up makes current: the shipped files (translation, fonts,
    // mpvqt.conf) are found there by relative name.
    QString readOnlyFolder;
    // The configuration that is read and written, and the installed default that seeds it
    // on its first change (empty when the configuration is edited in place).
    QString config;
    QString defaultConfig;
    QString historyDatabase;
    QString screenshotFolder;
    // Cover pictures made for the desktop's media controls.
    QString artFolder;

    // Decides from where the executable lies. Reads only; creates nothing.
    static AppPaths resolve(const QString& executableFolder);

    // The paths start-up chose; before that (tests, tools) the build-folder behaviour
    // relative to the current folder. GUI thread.
    static const AppPaths& current();
    static void setCurrent(const AppPaths& paths);
};
