#include "topologystore.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

TopologyStore::TopologyStore(const QString &path)
    : file(path)
{
}

void TopologyStore::clear()
{
    places.clear();
    linkList.clear();
}

bool TopologyStore::load()
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return false;
    // A layout file is small; anything larger is not ours.
    if (in.size() > 4 * 1024 * 1024)
        return false;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(in.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return false;
    clear();
    const QJsonObject units = document.object().value(QLatin1String("units")).toObject();
    for (auto it = units.begin(); it != units.end(); ++it) {
        const QJsonObject entry = it.value().toObject();
        Place place;
        place.pos
            = QPointF(entry.value(QLatin1String("x")).toDouble(), entry.value(QLatin1String("y")).toDouble());
        place.z = entry.value(QLatin1String("z")).toDouble();
        places.insert(it.key(), place);
    }
    const QJsonArray links = document.object().value(QLatin1String("links")).toArray();
    for (const QJsonValue &link : links) {
        const QJsonArray ends = link.toArray();
        if (ends.size() == 2 && ends.at(0).isString() && ends.at(1).isString())
            linkList.append(qMakePair(ends.at(0).toString(), ends.at(1).toString()));
    }
    return true;
}

bool TopologyStore::save() const
{
    QJsonObject units;
    for (auto it = places.cbegin(); it != places.cend(); ++it) {
        units.insert(it.key(),
            QJsonObject {{QStringLiteral("x"), it.value().pos.x()}, {QStringLiteral("y"), it.value().pos.y()},
                {QStringLiteral("z"), it.value().z}});
    }
    QJsonArray links;
    for (const auto &link : linkList)
        links.append(QJsonArray {link.first, link.second});
    QJsonObject root;
    root.insert(QStringLiteral("units"), units);
    root.insert(QStringLiteral("links"), links);

    QDir().mkpath(QFileInfo(file).absolutePath());
    // Written aside and renamed, so a crash never leaves half a layout.
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    out.write(QJsonDocument(root).toJson());
    return out.commit();
}
