#pragma once

class QQmlApplicationEngine;

// Registers every native type with QML under CustomUtils 1.0: singletons first (each
// provider hands out the one process-wide instance), then the creatable items.
void registerQmlTypes();

// After main.qml is loaded: image providers and native ownership of the shared services.
void finishEngineSetup(QQmlApplicationEngine& engine);
