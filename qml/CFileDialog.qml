import QtQuick 2.15
import QtQuick.Dialogs 1.3
import CustomUtils 1.0
import "MainLogic.js" as Logic

// Picks media files. A desktop with a platform theme (GTK, KDE, the desktop portal) shows its
// own dialog; elsewhere Qt's dialog appears, whose path field takes a typed full path on Enter.
FileDialog {
    id: root

    // Receives the chosen urls; without it they are queued in the tools' file list.
    property var handleSelected: null

    title: qsTr("Select Files")
    selectMultiple: true
    selectFolder: false
    // Many systems have no Desktop folder: a dialog opened on a missing folder shows nothing.
    folder: FileHelper.isExists(shortcuts.desktop) ? shortcuts.desktop : shortcuts.home

    onAccepted: {
        var urls = []
        for (var i = 0; i < fileUrls.length; ++i)
            urls.push(String(fileUrls[i]))
        if (typeof handleSelected === "function") {
            handleSelected(urls)
        } else {
            for (var j = 0; j < urls.length; ++j)
                FileModel.append(urls[j], 0, "")
        }
    }

    Component.onCompleted: nameFilters = Logic.nameFilters(ConfigHelper.getSupportedFormats())
}
