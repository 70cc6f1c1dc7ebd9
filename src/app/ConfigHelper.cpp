#include "ConfigHelper.h"

#include "AppPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <nlohmann/json.hpp>
#include <optional>
#include <spdlog/spdlog.h>

namespace {

std::optional<nlohmann::json> readConfig(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    nlohmann::json doc = nlohmann::json::parse(bytes.constData(), bytes.constData() + bytes.size(), nullptr,
                                               /*allow_exceptions=*/false);
    if (doc.is_discarded()) {
        spdlog::error("Invalid JSON in {}", path.toStdString());
        return std::nullopt;
    }
    return doc;
}

} // namespace

ConfigHelper::ConfigHelper(QObject* parent)
    : ConfigHelper(AppPaths::current().config, AppPaths::current().defaultConfig, parent)
{
}

ConfigHelper::ConfigHelper(const QString& configPath, const QString& seedPath, QObject* parent)
    : QObject(parent), m_path(configPath), m_seedPath(seedPath)
{
}

QString ConfigHelper::readPath() const
{
    return m_seedPath.isEmpty() || QFileInfo::exists(m_path) ? m_path : m_seedPath;
}

QStringList ConfigHelper::formats(const char* type) const
{
    QStringList result;
    const auto doc = readConfig(readPath());
    if (!doc || !doc->is_object() || !doc->contains("formats") || !(*doc)["formats"].is_array())
        return result;
    for (const auto& element : (*doc)["formats"]) {
        if (!element.is_object())
            continue;
        const auto ext = element.find("extension");
        if (ext == element.end() || !ext->is_string())
            continue;
        if (type) {
            const auto t = element.find("type");
            if (t == element.end() || !t->is_string() || t->get<std::string>() != type)
                continue;
        }
        result << QString::fromStdString(ext->get<std::string>());
    }
    return result;
}

QString ConfigHelper::stringValue(const char* key) const
{
    const auto doc = readConfig(readPath());
    if (!doc || !doc->is_object())
        return {};
    const auto it = doc->find(key);
    if (it == doc->end() || !it->is_string())
        return {};
    return QString::fromStdString(it->get<std::string>());
}

QStringList ConfigHelper::getSupportedFormats() const { return formats(nullptr); }
QStringList ConfigHelper::getSupportedVideoFormats() const { return formats("video"); }
QStringList ConfigHelper::getSupportedAudioFormats() const { return formats("audio"); }
QString ConfigHelper::appIcon() const { return stringValue("appIcon"); }
QString ConfigHelper::appName() const { return stringValue("appName"); }
QString ConfigHelper::developer() const { return stringValue("Developer"); }
QString ConfigHelper::phone() const { return stringValue("phone"); }
QString ConfigHelper::getDefaultDir() const { return stringValue("defaultDir"); }

void ConfigHelper::setDefaultDir(const QString& dir)
{
    auto doc = readConfig(readPath());
    if (!doc || !doc->is_object())
        return;
    (*doc)["defaultDir"] = dir.toStdString();
    // Compact, and UTF-8 kept as it is rather than escaped.
    const std::string text = doc->dump(-1, ' ', /*ensure_ascii=*/false, nlohmann::json::error_handler_t::replace);
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QFile file(m_path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        spdlog::error("Cannot write {}: {}", m_path.toStdString(), file.errorString().toStdString());
        return;
    }
    file.write(text.data(), static_cast<qint64>(text.size()));
}
