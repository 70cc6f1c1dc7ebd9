#pragma once

#include "LogCapture.h"
#include "TestMedia.h"

#include <QColor>
#include <QStringList>
#include <QtTest>
#include <algorithm>
#include <memory>

// Files no frame can be grabbed from, of the kinds that fail at different steps of the decode.
inline const QStringList kUnreadableKinds{"audio only", "empty", "random bytes", "missing"};

inline bool near(const QColor& a, const QColor& b, int tolerance)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}
