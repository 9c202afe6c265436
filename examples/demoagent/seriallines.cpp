#include "seriallines.h"

#include "faultplan.h"

#include <simulatedunit.h>
#include <unitlayout.h>

#include <QSocketNotifier>

#include <cerrno>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

struct SerialLines::Line
{
    int key = 0;
    SimulatedUnit *unit = nullptr;
    int master = -1;
    // Held open so that the master never reads a hang-up while the host has
    // the line closed.
    int slave = -1;
    QByteArray pending;
    std::unique_ptr<QSocketNotifier> notifier;

    ~Line()
    {
        notifier.reset();
        if (master >= 0)
            close(master);
        if (slave >= 0)
            close(slave);
    }
};

SerialLines::SerialLines(FaultPlan *faults, QObject *parent)
    : QObject(parent)
    , faults(faults)
{
}

SerialLines::~SerialLines() = default;

QString SerialLines::addUnit(int key, SimulatedUnit *unit)
{
    auto line = std::make_unique<Line>();
    char name[128] = {};
    if (openpty(&line->master, &line->slave, name, nullptr, nullptr) != 0)
        return QString();
    // Bytes pass untouched: no echo, no line editing, no newline translation.
    termios raw {};
    if (tcgetattr(line->slave, &raw) == 0) {
        cfmakeraw(&raw);
        tcsetattr(line->slave, TCSANOW, &raw);
    }
    fcntl(line->master, F_SETFL, fcntl(line->master, F_GETFL) | O_NONBLOCK);
    fcntl(line->master, F_SETFD, FD_CLOEXEC);
    fcntl(line->slave, F_SETFD, FD_CLOEXEC);
    line->key = key;
    line->unit = unit;
    line->notifier = std::make_unique<QSocketNotifier>(line->master, QSocketNotifier::Read);
    Line *raw_line = line.get();
    connect(
        line->notifier.get(), &QSocketNotifier::activated, this, [this, raw_line] { onReadable(raw_line); });
    lines.push_back(std::move(line));
    return QString::fromLocal8Bit(name);
}

void SerialLines::onReadable(Line *line)
{
    char buffer[512];
    for (;;) {
        const ssize_t got = read(line->master, buffer, sizeof(buffer));
        if (got <= 0)
            break;
        line->pending.append(buffer, static_cast<int>(got));
    }
    // A request no longer than the longest one keeps the buffer bounded
    // whatever arrives.
    while (!line->pending.isEmpty()) {
        const int length = UnitLayout::requestLength(static_cast<unsigned char>(line->pending.at(0)));
        if (line->pending.size() < length)
            break;
        const QByteArray request = line->pending.left(length);
        line->pending.remove(0, length);
        if (faults->drop(line->key))
            continue;
        const QByteArray answer = line->unit->handleSerial(request);
        if (!answer.isEmpty()
            && write(line->master, answer.constData(), static_cast<size_t>(answer.size())) < 0)
            line->pending.clear();
    }
}
