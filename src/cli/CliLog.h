#pragma once

// Routes the default spdlog logger and the FFmpeg library log of vidora-cli to the terminal.
// Errors are always shown; info lines (and the library's own output) only with verbose.
// Without verbose only the first error line of the run is printed: the later ones describe
// the same failure from further up.
namespace CliLog {
void install(bool verbose);
}
