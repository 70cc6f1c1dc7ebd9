#pragma once

#include <QMetaType>

// What a blocking libmpv call hands back instead of a value when it fails: libmpv's
// (negative) error code. Callers tell it apart by the QVariant's type.
struct ErrorReturn
{
    int error = 0;

    ErrorReturn() = default;
    explicit ErrorReturn(int code) : error(code) {}
};
Q_DECLARE_METATYPE(ErrorReturn)
