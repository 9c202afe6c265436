#ifndef TRAPVISUAL_H
#define TRAPVISUAL_H

#include "muxcore_export.h"

#include <QHash>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

class QSortFilterProxyModel;
class QStandardItem;
class QStandardItemModel;

// One received trap as the host hands it over.
struct MUXCORE_EXPORT TrapVisualUnit
{
    // Identity of the sending unit, kept with the row.
    quint64 identifier = 0;
    QString deviceName;
    // A Core::AlarmType value; selects the row colour.
    quint8 alarm = 0;
    QHash<QString, QVariant> variables;
    // Put in front of every variable in the Information column.
    QString prefix;
};

Q_DECLARE_METATYPE(TrapVisualUnit)

// The list of received traps as a table model for the host's trap window:
// time, device and contents per row, optionally tinted by alarm level,
// filtered by a pattern and freezable.
class MUXCORE_EXPORT TrapVisual : public QObject
{
    Q_OBJECT
public:
    enum Roles {
        // On the Device cell: the unit identifier. On the Time cell: the reception time.
        IdentifierRole = Qt::UserRole + 1,
        // On the Device cell: the alarm level.
        AlarmRole = Qt::UserRole + 2
    };

    explicit TrapVisual(QObject *parent = nullptr);

    // The three cells of the trap's row: Time, Device, Information.
    QList<QStandardItem *> makeTrapRow(TrapVisualUnit unit);
    QString getFilter();
    // The model views should show: filtered, and sortable by the view.
    QSortFilterProxyModel *getModel();
    bool isColorsShown();
    bool isTrapsOverlap();

public slots:
    // Appends the trap at the bottom, unless the list is frozen.
    void setTrap(TrapVisualUnit unit);
    void clear();
    // A regular expression matched against the Time column.
    void setFilter(QString filter);
    // Applies to traps that arrive afterwards.
    void showColors(bool show);
    // While on, the list is frozen: new traps are dropped.
    void trapsOverlap(bool overlap);

private:
    bool overlap = false;
    bool colors = false;
    QString filter;
    QStandardItemModel *model;
    QSortFilterProxyModel *proxy;
    QStringList headerLabels;
};

#endif // TRAPVISUAL_H
