#include "MprisRootAdaptor.h"

#include "MprisService.h"
#include "VidoraMimeTypes.h"

MprisRootAdaptor::MprisRootAdaptor(MprisService* service) : QDBusAbstractAdaptor(service), m_service(service) {}

QString MprisRootAdaptor::identity() const { return QStringLiteral("Vidora"); }

// The installed desktop entry's name without ".desktop".
QString MprisRootAdaptor::desktopEntry() const { return QStringLiteral("org.vidora.vidora"); }

QStringList MprisRootAdaptor::supportedUriSchemes() const { return {QStringLiteral("file")}; }

QStringList MprisRootAdaptor::supportedMimeTypes() const
{
    return QString::fromLatin1(kVidoraMimeTypes).split(QLatin1Char(';'), Qt::SkipEmptyParts);
}

void MprisRootAdaptor::Raise() { m_service->raise(); }

void MprisRootAdaptor::Quit() { m_service->quit(); }
