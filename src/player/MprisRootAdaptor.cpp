#include "MprisRootAdaptor.h"

#include "MprisControls.h"
#include "VidoraMimeTypes.h"

MprisRootAdaptor::MprisRootAdaptor(QObject* service, MprisControls* controls)
    : QDBusAbstractAdaptor(service), m_controls(controls)
{
}

QString MprisRootAdaptor::identity() const { return QStringLiteral("Vidora"); }

// The installed desktop entry's name without ".desktop".
QString MprisRootAdaptor::desktopEntry() const { return QStringLiteral("org.vidora.vidora"); }

QStringList MprisRootAdaptor::supportedUriSchemes() const { return {QStringLiteral("file")}; }

QStringList MprisRootAdaptor::supportedMimeTypes() const
{
    return QString::fromLatin1(kVidoraMimeTypes).split(QLatin1Char(';'), Qt::SkipEmptyParts);
}

void MprisRootAdaptor::Raise() { m_controls->raise(); }

void MprisRootAdaptor::Quit() { m_controls->quit(); }
