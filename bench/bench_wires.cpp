// SNMP over loopback against demoagent: a walk of 10,000 OIDs by SnmpClient
// set against net-snmp's own snmpbulkwalk of the same subtree with the same
// repetitions per exchange, and one scan pass over 200 units, each on its own
// endpoint with its own client, set against 200 walks of a single unit.
#include <snmp/snmpclient.h>

#include <benchmark/benchmark.h>

#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <QUdpSocket>

#include <memory>
#include <vector>

namespace {

const QString tableArc = QStringLiteral("1.3.6.1.4.1.32473.99");
const QString unitArc = QStringLiteral("1.3.6.1.4.1.32473");
constexpr int tableRows = 10000;

// demoagent for the length of one benchmark run.
class Agent
{
public:
    explicit Agent(const QStringList &arguments)
    {
        for (int attempt = 0; attempt < 5 && port == 0; ++attempt) {
            QUdpSocket probe;
            probe.bind(QHostAddress(QHostAddress::LocalHost), 0);
            const int first = probe.localPort();
            probe.close();
            process.start(QStringLiteral(DEMOAGENT_BINARY),
                QStringList {
                    QStringLiteral("--snmp-port"), QString::number(first), QStringLiteral("--snmp-only")}
                    + arguments);
            while (process.waitForReadyRead(20000)) {
                if (process.readAll().contains("ready\n")) {
                    port = first;
                    break;
                }
            }
            if (port == 0)
                process.waitForFinished(5000);
        }
    }
    ~Agent()
    {
        process.terminate();
        if (!process.waitForFinished(5000))
            process.kill();
        process.waitForFinished(2000);
    }
    SnmpTarget target(int unit) const
    {
        SnmpTarget t;
        t.host = QHostAddress::LocalHost;
        t.port = static_cast<quint16>(port + unit);
        t.version = SnmpTarget::V2c;
        return t;
    }
    int port = 0;

private:
    QProcess process;
};

// The number of variables of the walk, or -1 when it failed.
int walk(SnmpClient &client, const QString &subtree)
{
    QEventLoop loop;
    int count = -1;
    QObject::connect(
        &client, &SnmpClient::finished, &loop, [&](int, const QHash<QString, QVariant> &variables) {
            count = variables.size();
            loop.quit();
        });
    QObject::connect(&client, &SnmpClient::failed, &loop, [&] { loop.quit(); });
    if (client.walk(subtree) == 0)
        return -1;
    loop.exec();
    return count;
}

void BM_ClientWalk(benchmark::State &state)
{
    Agent agent({QStringLiteral("--units"), QStringLiteral("1"), QStringLiteral("--table-rows"),
        QString::number(tableRows)});
    SnmpClient client(agent.target(0));
    int count = 0;
    for (auto _ : state)
        count = walk(client, tableArc);
    if (agent.port == 0 || count != tableRows)
        state.SkipWithError("the walk did not bring back the whole table");
}

void BM_SnmpBulkWalk(benchmark::State &state)
{
    Agent agent({QStringLiteral("--units"), QStringLiteral("1"), QStringLiteral("--table-rows"),
        QString::number(tableRows)});
    // The client's 20 repetitions per GETBULK; output discarded as the client keeps it.
    const QStringList arguments {QStringLiteral("-v2c"), QStringLiteral("-c"), QStringLiteral("public"),
        QStringLiteral("-Cr20"), QStringLiteral("-On"), QStringLiteral("-Oq"),
        QStringLiteral("127.0.0.1:%1").arg(agent.port), tableArc};
    int lines = 0;
    for (auto _ : state) {
        QProcess tool;
        tool.start(QStringLiteral("snmpbulkwalk"), arguments);
        tool.waitForFinished(60000);
        // The last line tells that the walk ran past the end of the agent's view.
        lines = tool.readAllStandardOutput().count('\n') - 1;
    }
    if (agent.port == 0 || lines != tableRows)
        state.SkipWithError("snmpbulkwalk did not bring back the whole table");
}

// One poll of each unit in turn, as the map's scan asks for them.
void BM_ScanPass(benchmark::State &state)
{
    const int units = 200;
    Agent agent({QStringLiteral("--units"), QString::number(units)});
    std::vector<std::unique_ptr<SnmpClient>> clients;
    for (int i = 0; i < units; ++i)
        clients.push_back(std::make_unique<SnmpClient>(agent.target(i)));
    // Each client opens its session on its first request; the scan measured
    // is the steady one that follows.
    bool ok = agent.port != 0;
    for (auto &client : clients)
        ok = ok && walk(*client, unitArc) > 60;
    for (auto _ : state) {
        for (auto &client : clients)
            ok = walk(*client, unitArc) > 60 && ok;
    }
    if (!ok)
        state.SkipWithError("a unit did not answer its poll");
}

void BM_ScanOneUnit(benchmark::State &state)
{
    const int polls = 200;
    Agent agent({QStringLiteral("--units"), QStringLiteral("1")});
    SnmpClient client(agent.target(0));
    bool ok = agent.port != 0 && walk(client, unitArc) > 60;
    for (auto _ : state) {
        for (int i = 0; i < polls; ++i)
            ok = walk(client, unitArc) > 60 && ok;
    }
    if (!ok)
        state.SkipWithError("the unit did not answer its poll");
}

} // namespace

BENCHMARK(BM_ClientWalk)->Name("wires/client_walk_10000oids")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SnmpBulkWalk)
    ->Name("wires/snmpbulkwalk_10000oids")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScanPass)->Name("wires/scan_pass_200units")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScanOneUnit)->Name("wires/200_polls_of_one_unit")->UseRealTime()->Unit(benchmark::kMillisecond);
