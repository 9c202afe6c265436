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

/// One received trap as the host hands it over.
struct MUXCORE_EXPORT TrapVisualUnit
{
    /// Identity of the sending unit, kept with the row (TrapVisual::IdentifierRole).
    quint64 identifier = 0;
    /// Shown in the Device column.
    QString deviceName;
    /// A Core::AlarmType value; selects the row colour.
    quint8 alarm = 0;
    /// The trap's variables by OID, shown as "prefix:name:value;" in the Information column.
    QHash<QString, QVariant> variables;
    /// Put in front of every variable in the Information column.
    QString prefix;
};

Q_DECLARE_METATYPE(TrapVisualUnit)

/**
 * The list of received traps as a table model for the host's trap window:
 * time, device and contents per row, optionally tinted by alarm level,
 * filtered by a pattern and freezable.
 *
 * The host's trap receiver calls setTrap() for every trap; a view shows
 * getModel(). The models are owned by this object.
 */
class MUXCORE_EXPORT TrapVisual : public QObject
{
    Q_OBJECT
public:
    /// Data roles of the row items besides their text.
    enum Roles {
        /// On the Device cell: the unit identifier. On the Time cell: the reception time.
        IdentifierRole = Qt::UserRole + 1,
        /// On the Device cell: the alarm level.
        AlarmRole = Qt::UserRole + 2
    };

    /// An empty list with the headers "Time", "Device", "Information"; colours off, not frozen.
    explicit TrapVisual(QObject *parent = nullptr);

    /// The three cells of the trap's row: Time, Device, Information; the caller owns them until added to a
    /// model.
    QList<QStandardItem *> makeTrapRow(TrapVisualUnit unit);
    /// The pattern last given to setFilter().
    QString getFilter();
    /// The model views should show: filtered, and sortable by the view.
    QSortFilterProxyModel *getModel();
    /// Whether new rows are tinted by alarm level.
    bool isColorsShown();
    /// Whether the list is frozen.
    bool isTrapsOverlap();
    /// The most rows the list keeps; 0, the default, means no limit.
    int maximumRows() const;

public slots:
    /// Appends the trap at the bottom, unless the list is frozen. With a maximum row count set, the oldest
    /// rows make room for it.
    void setTrap(TrapVisualUnit unit);
    /// Removes every row; the headers stay.
    void clear();
    /// A regular expression matched against the Time column.
    void setFilter(QString filter);
    /// Tints rows by alarm level; applies to traps that arrive afterwards.
    void showColors(bool show);
    /// While on, the list is frozen: new traps are dropped.
    void trapsOverlap(bool overlap);
    /**
     * Keeps at most \a count rows: once the list is full, each new trap drops the oldest row (the earliest
     * appended, whatever the view's sort order). Lowering the limit drops the surplus oldest rows at once.
     * 0 or less means no limit, the default, so a long-running host opts in to bounded memory.
     */
    void setMaximumRows(int count);

private:
    void dropOldestRows();

    bool overlap = false;
    bool colors = false;
    int maxRows = 0;
    QString filter;
    QStandardItemModel *model;
    QSortFilterProxyModel *proxy;
    QStringList headerLabels;
};

#endif // TRAPVISUAL_H
