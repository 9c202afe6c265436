#ifndef SNMPINDEX_P_H
#define SNMPINDEX_P_H

#include <QHash>
#include <QPair>
#include <QString>
#include <QVariant>
#include <QVector>

#include <memory>
#include <vector>

class BaseRawType;

// A map's items' SNMP start addresses as one Aho-Corasick automaton, so that
// loading a variable set reads each OID once whatever the number of items,
// instead of every item testing every OID.
class SnmpIndex
{
public:
    using Variables = QHash<QString, QVariant>;

    // Slot is the item's place in the map's walk; called for a new item and
    // for one that replaces another.
    void itemAdded(int slot);
    // Brings the automaton up to the items' current start addresses (items
    // may change them at any time, so they are compared on every load). Gives
    // the pairs of slots (inner, outer) where the inner address lies within
    // the outer one and one of the two is new or changed; at most
    // maxOverlaps + 1 of them.
    QVector<QPair<int, int>> refresh(const QVector<BaseRawType *> &items);
    // One of the start addresses, empty when the items have none.
    QString anAddress() const;

    static constexpr int maxOverlaps = 32;

    // Set once a load found nothing for any item, so that a unit answering
    // in the wrong OID form is reported once, not on every poll.
    bool missReported = false;

    struct Build;

    // One loadData of a map. It matches the set once on construction; each
    // item's base readData then takes its share from it, provided the item is
    // the one the map is visiting, has kept its start address and the set has
    // not been changed by an item before it. Anything else reads the set on
    // its own, as outside a map. Passes nest (an item may load another map).
    class Pass
    {
    public:
        // Also copies every variable into lastSent, in the same walk over
        // the set, while each OID is at hand.
        Pass(const SnmpIndex &index, const Variables *variables, Variables &lastSent);
        ~Pass();
        Pass(const Pass &) = delete;
        Pass &operator=(const Pass &) = delete;

        void visit(int place, const BaseRawType *item);
        // No item took a variable, by either way.
        bool tookNothing() const;

        static bool takeShared(const BaseRawType *item, const Variables &variables, Variables &into);
        static void noteTaken(int count);

    private:
        std::shared_ptr<const Build> build;
        const Variables *variables;
        // Holds the set's data as it was matched: while the map's set still
        // shares it, the set is unchanged and the iterators below are valid.
        const Variables snapshot;
        std::vector<int> first; // per address: where its variables begin in hits
        std::vector<Variables::const_iterator> hits;
        int slot = -1;
        const BaseRawType *current = nullptr;
        int taken = 0;
        Pass *outer;
        static thread_local Pass *active;
    };

private:
    std::shared_ptr<const Build> build;
    std::vector<QString> addresses; // per slot, as last built
    std::vector<bool> fresh; // per slot: added or changed since last built
};

#endif // SNMPINDEX_P_H
