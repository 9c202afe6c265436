#ifndef TOPOLOGYSTORE_H
#define TOPOLOGYSTORE_H

#include <QHash>
#include <QList>
#include <QPair>
#include <QPointF>
#include <QString>

class QJsonValue;

// The host's own record of the topology drawing: where each unit stands,
// which units are linked and what part of the drawing was in view. The
// library keeps no layout; a host stores it wherever it keeps its network (a
// database, a project file). Units are named by their names, which, unlike
// the map's keys, survive a restart.
class TopologyStore
{
public:
    enum LoadResult {
        Missing, // no file yet: a first start
        Loaded,
        Damaged // the file is not wholly a layout; what could be read is kept
    };
    struct Place
    {
        QPointF pos;
        double z = 0.0;
    };
    struct View
    {
        QPointF centre;
        double zoom = 0.0; // 0: none stored
    };

    explicit TopologyStore(const QString &path);

    QString path() const { return file; }
    LoadResult load();
    // Written aside and renamed, so a crash or a full disk never leaves half a
    // layout. False with errorString() when the file could not be written.
    bool save();
    QString errorString() const { return error; }
    // Renames the file beside itself so that the next save cannot overwrite
    // what the user may still want back. The new path, or empty on failure.
    QString keepAside();

    bool hasPlace(const QString &name) const { return places.contains(name); }
    Place place(const QString &name) const { return places.value(name); }
    void setPlace(const QString &name, const Place &place) { places.insert(name, place); }
    int placeCount() const { return places.size(); }
    QList<QPair<QString, QString>> links() const { return linkList; }
    void setLinks(const QList<QPair<QString, QString>> &links) { linkList = links; }
    View view() const { return shown; }
    void setView(const View &view) { shown = view; }
    void clear();

private:
    bool readUnits(const QJsonValue &value);
    bool readLinks(const QJsonValue &value);
    bool readView(const QJsonValue &value);

    QString file;
    QString error;
    QHash<QString, Place> places;
    QList<QPair<QString, QString>> linkList;
    View shown;
};

#endif // TOPOLOGYSTORE_H
