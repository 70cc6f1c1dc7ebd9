#pragma once

// Sets the default logger's level to error, as normal runs want. VIDORA_LOG_LEVEL
// (trace, debug, info, warn, error, critical, off) raises or lowers it for diagnosis.
void applyLogLevel();
