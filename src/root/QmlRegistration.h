#pragma once

class QQmlApplicationEngine;
class QQmlEngine;

// Registers every native type with QML under CustomUtils 1.0: singletons first (each
// provider hands out the one process-wide instance), then the creatable items.
void registerQmlTypes();

// Lets the engine find the QML half of CustomUtils (qrc:/CustomUtils/qmldir: the theme, the
// controls and the dialogs), which shares its URI with the native types. Call before loading.
void addModuleImportPath(QQmlEngine& engine);

// After main.qml is loaded: image providers and native ownership of the shared services.
void finishEngineSetup(QQmlApplicationEngine& engine);
