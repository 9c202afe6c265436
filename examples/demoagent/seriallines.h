#ifndef SERIALLINES_H
#define SERIALLINES_H

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

class FaultPlan;
class QSocketNotifier;
class SimulatedUnit;

// The serial units, each at the far end of a pseudo-terminal: the agent holds
// the master side, the host opens the slave path like any serial port. Bytes
// are gathered until a whole request is in, then the unit's answer goes back.
class SerialLines : public QObject
{
    Q_OBJECT
public:
    explicit SerialLines(FaultPlan *faults, QObject *parent = nullptr);
    ~SerialLines() override;

    // The path of the unit's new line, or empty when no pseudo-terminal was left.
    QString addUnit(int key, SimulatedUnit *unit);

private:
    struct Line;
    void onReadable(Line *line);

    FaultPlan *faults;
    std::vector<std::unique_ptr<Line>> lines;
};

#endif // SERIALLINES_H
