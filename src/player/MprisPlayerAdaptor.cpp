#include "MprisPlayerAdaptor.h"

#include "MprisService.h"

MprisPlayerAdaptor::MprisPlayerAdaptor(MprisService* service) : QDBusAbstractAdaptor(service), m_service(service)
{
    connect(service, &MprisService::seeked, this, &MprisPlayerAdaptor::Seeked);
}

QString MprisPlayerAdaptor::playbackStatus() const { return m_service->playbackStatus(); }
double MprisPlayerAdaptor::rate() const { return m_service->rate(); }
void MprisPlayerAdaptor::setRate(double rate) { m_service->setRate(rate); }
QVariantMap MprisPlayerAdaptor::metadata() const { return m_service->metadata(); }
double MprisPlayerAdaptor::volume() const { return m_service->volume(); }
void MprisPlayerAdaptor::setVolume(double volume) { m_service->setVolume(volume); }
qlonglong MprisPlayerAdaptor::position() const { return m_service->positionMicroseconds(); }

void MprisPlayerAdaptor::Next() { emit m_service->nextRequested(); }
void MprisPlayerAdaptor::Previous() { emit m_service->previousRequested(); }
void MprisPlayerAdaptor::Pause() { m_service->pause(); }
void MprisPlayerAdaptor::PlayPause() { m_service->playPause(); }
void MprisPlayerAdaptor::Stop() { m_service->stop(); }
void MprisPlayerAdaptor::Play() { m_service->play(); }
void MprisPlayerAdaptor::Seek(qlonglong Offset) { m_service->seek(Offset); }
void MprisPlayerAdaptor::SetPosition(const QDBusObjectPath& TrackId, qlonglong Position)
{
    m_service->setPosition(TrackId, Position);
}
void MprisPlayerAdaptor::OpenUri(const QString& Uri) { m_service->openUri(Uri); }
