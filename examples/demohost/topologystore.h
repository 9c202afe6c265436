#ifndef TOPOLOGYSTORE_H
#define TOPOLOGYSTORE_H

#include <QHash>
#include <QList>
#include <QPair>
#include <QPointF>
#include <QString>

// The host's own record of the topology drawing: where each unit stands and
// which units are linked. The library keeps no layout; a host stores it
// wherever it keeps its network (a database, a project file). Units are
// named by their names, which, unlike the map's keys, survives a restart.
class TopologyStore
{
public:
    struct Place
    {
        QPointF pos;
        double z = 0.0;
    };

    explicit TopologyStore(const QString &path);

    QString path() const { return file; }
    // False when there is no file yet or it cannot be read as a layout.
    bool load();
    bool save() const;

    bool hasPlace(const QString &name) const { return places.contains(name); }
    Place place(const QString &name) const { return places.value(name); }
    void setPlace(const QString &name, const Place &place) { places.insert(name, place); }
    QList<QPair<QString, QString>> links() const { return linkList; }
    void setLinks(const QList<QPair<QString, QString>> &links) { linkList = links; }
    void clear();

private:
    QString file;
    QHash<QString, Place> places;
    QList<QPair<QString, QString>> linkList;
};

#endif // TOPOLOGYSTORE_H
