// SNMP variable sets with arbitrary OIDs and values, as units may answer,
// read into items and maps and used through every value accessor.

#include "fuzzinput.h"

#include <memory/baserawtype.h>
#include <memory/memorymap.h>
#include <memory/tg826.h>
#include <memory/u16item.h>
#include <memory/u8array.h>
#include <memory/u8item.h>

#include <QHash>
#include <QLoggingCategory>
#include <QVariant>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using Variables = QHash<QString, QVariant>;

const QString enterprise = QStringLiteral(".1.3.6.1.4.1.32473");

// One variable a line: a type byte, the OID, a tab, the value.
QVariant valueOf(quint8 type, const QByteArray &text)
{
    FuzzInput input(reinterpret_cast<const uint8_t *>(text.constData()), size_t(text.size()));
    switch (type % 8) {
    case 0:
        return int(input.dword());
    case 1:
        return uint(input.dword());
    case 2:
        return qlonglong(quint64(input.dword()) << 32 | input.dword());
    case 3: {
        const quint64 bits = quint64(input.dword()) << 32 | input.dword();
        double number;
        std::memcpy(&number, &bits, sizeof number);
        return number;
    }
    case 4:
        return QString::fromUtf8(text);
    case 5:
        return text;
    case 6:
        return !text.isEmpty();
    default:
        return QVariant();
    }
}

Variables variableSet(FuzzInput &input)
{
    Variables variables;
    while (!input.atEnd()) {
        const quint8 type = input.byte();
        const QByteArray line = input.field();
        const int tab = line.indexOf('\t');
        const QByteArray oid = tab < 0 ? line : line.left(tab);
        variables.insert(QString::fromLatin1(oid.constData(), oid.size()),
            valueOf(type, tab < 0 ? QByteArray() : line.mid(tab + 1)));
    }
    return variables;
}

void useValues(BaseRawType &item, const QString &name, int index, unsigned char first, unsigned char count)
{
    item.getValue();
    item.getValue(name);
    item.getValue(name, index);
    item.getValueFromZero(name, index);
    item.getValueNonSufix(index);
    const unsigned long long field = item.getValue(name, index, first, count);
    if (count == 0 || first >= 64)
        FUZZ_CHECK(field == 0);
    else if (count < 64)
        FUZZ_CHECK(field < (1ULL << count));
    item.getValue(first, count);
    item.getValue(name, first, count);
    item.getValueFromZero(name, index, first, count);
    item.getValueNonSufix(index, first, count);

    const int before = item.getSnmpData().size();
    item.setValue(name, index, 7ULL, first, count);
    item.setValue(name, QVariant(index));
    item.setValueNonSufix(index, 1ULL, first, count);
    item.setValue(0x55ULL, first, count);
    FUZZ_CHECK(item.getSnmpData().size() == before);
    item.setValueHard(name, index, QVariant(index));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const QString prefix = input.latin1Field();
    const QString name = input.latin1Field();
    const int index = int(input.dword());
    const unsigned char first = input.byte();
    const unsigned char count = input.byte();
    Variables variables = variableSet(input);

    // A bare item under a prefix the input chooses.
    BaseRawType item;
    item.setStartAddress(prefix);
    FUZZ_CHECK(item.readData(&variables));
    FUZZ_CHECK(item.getMode() == 1);
    for (auto it = item.getSnmpData().cbegin(); it != item.getSnmpData().cend(); ++it)
        FUZZ_CHECK(variables.contains(it.key()) && it.key().contains(prefix));
    useValues(item, name, index, first, count);

    // Only changes are sent, once.
    Variables lastSent;
    Variables toSend;
    FUZZ_CHECK(item.writeData(&toSend, lastSent));
    FUZZ_CHECK(toSend.size() <= item.getSnmpData().size());
    Variables second;
    FUZZ_CHECK(item.writeData(&second, lastSent));
    FUZZ_CHECK(second.isEmpty());

    // Addresses taken from the input, lying within one another, in one map
    // matched in one pass against twins that each read the set alone.
    {
        static const bool quiet = [] {
            QLoggingCategory::setFilterRules(QStringLiteral("muxcore.memory.warning=false"));
            return true;
        }();
        Q_UNUSED(quiet)
        const QString addresses[] = {prefix, prefix.left(prefix.size() / 2), prefix.mid(1), prefix, name,
            QString(), enterprise, QStringLiteral("1")};
        MemoryMap shared;
        std::vector<std::unique_ptr<BaseRawType>> alone;
        for (const QString &address : addresses) {
            auto *twin = new BaseRawType;
            twin->setStartAddress(address);
            shared.addItem(QString::number(int(alone.size())), twin);
            alone.emplace_back(new BaseRawType);
            alone.back()->setStartAddress(address);
        }
        FUZZ_CHECK(shared.loadData(&variables));
        for (size_t i = 0; i < alone.size(); ++i) {
            FUZZ_CHECK(alone[i]->readData(&variables));
            const Variables &mine = shared.getItem(QString::number(int(i)))->getSnmpData();
            FUZZ_CHECK(mine.size() == alone[i]->getSnmpData().size());
            for (auto it = mine.cbegin(); it != mine.cend(); ++it)
                FUZZ_CHECK(alone[i]->getSnmpData().contains(it.key()));
        }
    }

    // The items of a device model's status map, in SNMP mode.
    MemoryMap map;
    auto *mode = new U8Item;
    mode->setStartAddress(enterprise + QStringLiteral(".1.1"));
    auto *port = new U16Item;
    port->setStartAddress(enterprise + QStringLiteral(".1.2"));
    auto *timeSlots = new U8Array;
    timeSlots->setStartAddress(enterprise + QStringLiteral(".1.3"));
    auto *g826 = new Tg826;
    g826->setPortCount(4);
    map.addItem(QStringLiteral("mode"), mode);
    map.addItem(QStringLiteral("port"), port);
    map.addItem(QStringLiteral("timeSlots"), timeSlots);
    map.addItem(QStringLiteral("g826"), g826);
    FUZZ_CHECK(map.loadData(&variables));
    mode->set(mode->get());
    port->set(port->get());
    for (unsigned char p = 0; p < 5; ++p) {
        g826->EBCrc4(p);
        g826->SESEbit(p);
    }
    useValues(*g826, name, index, first, count);
    map.serialise();
    Variables changes;
    FUZZ_CHECK(map.saveData(&changes));
    return 0;
}
