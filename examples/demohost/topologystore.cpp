#include "topologystore.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cmath>

namespace {

// A layout file is small; anything larger is not ours.
constexpr qint64 maximumFileSize = 16 * 1024 * 1024;
// Far beyond any drawing, yet well inside what the scene can hold.
constexpr double maximumCoordinate = 1e6;

QString tr(const char *text)
{
    return QCoreApplication::translate("TopologyStore", text);
}

bool isCoordinate(const QJsonValue &value)
{
    return value.isDouble() && std::isfinite(value.toDouble())
        && std::abs(value.toDouble()) <= maximumCoordinate;
}

// The scene moves a unit's origin into 1900 x 1060; a place beyond would
// land, without a word, on whatever unit stands at the edge.
bool isPlace(const QJsonValue &x, const QJsonValue &y)
{
    return isCoordinate(x) && isCoordinate(y) && x.toDouble() >= 0 && x.toDouble() <= 1900
        && y.toDouble() >= 0 && y.toDouble() <= 1060;
}

} // namespace

TopologyStore::TopologyStore(const QString &path)
    : file(path)
{
}

void TopologyStore::clear()
{
    places.clear();
    linkList.clear();
    shown = View();
}

TopologyStore::LoadResult TopologyStore::load()
{
    clear();
    error.clear();
    QFile in(file);
    if (!in.exists())
        return Missing;
    if (!in.open(QIODevice::ReadOnly)) {
        error = in.errorString();
        return Damaged;
    }
    if (in.size() > maximumFileSize) {
        error = tr("the file is larger than any layout");
        return Damaged;
    }
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(in.readAll(), &parse);
    if (parse.error != QJsonParseError::NoError) {
        error = parse.errorString();
        return Damaged;
    }
    if (!document.isObject()) {
        error = tr("the file holds no layout");
        return Damaged;
    }
    const QJsonObject root = document.object();
    // Read every part, so that one damaged part costs only itself.
    const bool unitsOk = readUnits(root.value(QLatin1String("units")));
    const bool linksOk = readLinks(root.value(QLatin1String("links")));
    const bool viewOk = readView(root.value(QLatin1String("view")));
    if (unitsOk && linksOk && viewOk)
        return Loaded;
    error = tr("some entries are not places, links or a view");
    return Damaged;
}

bool TopologyStore::readUnits(const QJsonValue &value)
{
    if (!value.isObject())
        return false;
    bool ok = true;
    const QJsonObject units = value.toObject();
    for (auto it = units.begin(); it != units.end(); ++it) {
        const QJsonObject entry = it.value().toObject();
        const QJsonValue x = entry.value(QLatin1String("x"));
        const QJsonValue y = entry.value(QLatin1String("y"));
        const QJsonValue z = entry.value(QLatin1String("z"));
        // A unit without a readable place is placed afresh, never at 0,0 on top of another.
        if (!isPlace(x, y) || !(z.isUndefined() || isCoordinate(z))) {
            ok = false;
            continue;
        }
        places.insert(it.key(), {QPointF(x.toDouble(), y.toDouble()), z.toDouble()});
    }
    return ok;
}

bool TopologyStore::readLinks(const QJsonValue &value)
{
    if (value.isUndefined())
        return true;
    if (!value.isArray())
        return false;
    bool ok = true;
    for (const QJsonValue &link : value.toArray()) {
        const QJsonArray ends = link.toArray();
        if (ends.size() == 2 && ends.at(0).isString() && ends.at(1).isString())
            linkList.append(qMakePair(ends.at(0).toString(), ends.at(1).toString()));
        else
            ok = false;
    }
    return ok;
}

bool TopologyStore::readView(const QJsonValue &value)
{
    // Files of earlier versions of the host have no view.
    if (value.isUndefined())
        return true;
    const QJsonObject view = value.toObject();
    const QJsonValue x = view.value(QLatin1String("x"));
    const QJsonValue y = view.value(QLatin1String("y"));
    const double zoom = view.value(QLatin1String("zoom")).toDouble();
    if (!isCoordinate(x) || !isCoordinate(y) || !(zoom > 0.001 && zoom < 1000))
        return false;
    shown = {QPointF(x.toDouble(), y.toDouble()), zoom};
    return true;
}

bool TopologyStore::save()
{
    QJsonObject units;
    for (auto it = places.cbegin(); it != places.cend(); ++it) {
        units.insert(it.key(),
            QJsonObject {{QStringLiteral("x"), it.value().pos.x()}, {QStringLiteral("y"), it.value().pos.y()},
                {QStringLiteral("z"), it.value().z}});
    }
    QJsonArray links;
    for (const auto &link : qAsConst(linkList))
        links.append(QJsonArray {link.first, link.second});
    QJsonObject root;
    root.insert(QStringLiteral("units"), units);
    root.insert(QStringLiteral("links"), links);
    if (shown.zoom > 0) {
        root.insert(QStringLiteral("view"),
            QJsonObject {{QStringLiteral("x"), shown.centre.x()}, {QStringLiteral("y"), shown.centre.y()},
                {QStringLiteral("zoom"), shown.zoom}});
    }

    QDir().mkpath(QFileInfo(file).absolutePath());
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(QJsonDocument(root).toJson()) < 0 || !out.commit()) {
        error = out.errorString();
        return false;
    }
    error.clear();
    return true;
}

QString TopologyStore::keepAside()
{
    const QString stem
        = QStringLiteral("%1.damaged-%2")
              .arg(file, QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")));
    // Never over an earlier damaged file: that may be the one the user wants.
    QString aside = stem;
    for (int n = 2; QFile::exists(aside) && n < 1000; ++n)
        aside = QStringLiteral("%1-%2").arg(stem).arg(n);
    return QFile::rename(file, aside) ? aside : QString();
}
