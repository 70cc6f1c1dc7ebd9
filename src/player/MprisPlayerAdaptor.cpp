#include "MprisPlayerAdaptor.h"

#include "MprisControls.h"

MprisPlayerAdaptor::MprisPlayerAdaptor(QObject* service, MprisControls* controls)
    : QDBusAbstractAdaptor(service), m_controls(controls)
{
    // The service announces position jumps as seeked(qlonglong).
    connect(service, SIGNAL(seeked(qlonglong)), this, SIGNAL(Seeked(qlonglong)));
}

QString MprisPlayerAdaptor::playbackStatus() const { return m_controls->playbackStatus(); }
double MprisPlayerAdaptor::rate() const { return m_controls->rate(); }
void MprisPlayerAdaptor::setRate(double rate) { m_controls->setRate(rate); }
QVariantMap MprisPlayerAdaptor::metadata() const { return m_controls->metadata(); }
double MprisPlayerAdaptor::volume() const { return m_controls->volume(); }
void MprisPlayerAdaptor::setVolume(double volume) { m_controls->setVolume(volume); }
qlonglong MprisPlayerAdaptor::position() const { return m_controls->positionMicroseconds(); }

void MprisPlayerAdaptor::Next() { m_controls->next(); }
void MprisPlayerAdaptor::Previous() { m_controls->previous(); }
void MprisPlayerAdaptor::Pause() { m_controls->pause(); }
void MprisPlayerAdaptor::PlayPause() { m_controls->playPause(); }
void MprisPlayerAdaptor::Stop() { m_controls->stop(); }
void MprisPlayerAdaptor::Play() { m_controls->play(); }
void MprisPlayerAdaptor::Seek(qlonglong Offset) { m_controls->seek(Offset); }
void MprisPlayerAdaptor::SetPosition(const QDBusObjectPath& TrackId, qlonglong Position)
{
    m_controls->setPosition(TrackId, Position);
}
void MprisPlayerAdaptor::OpenUri(const QString& Uri) { m_controls->openUri(Uri); }
