import QtQuick 2.15
import CustomUtils 1.0

// The small heading over a group of form rows.
Text {
    font.pixelSize: Theme.fontSmall
    font.weight: Font.Medium
    color: Theme.textPrimary
}
