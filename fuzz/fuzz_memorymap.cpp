// Memory documents (JSON) and memory images of any content, loaded into maps
// of the library's items.

#include "fuzzinput.h"

#include <memory/memorymap.h>
#include <memory/tg826.h>
#include <memory/u16array.h>
#include <memory/u16item.h>
#include <memory/u8array.h>
#include <memory/u8item.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

template<typename Item> Item *placed(unsigned int address, unsigned int count = 1)
{
    auto *item = new Item;
    item->setStartAddress(address);
    if (count != 1)
        item->setItemsCount(count);
    return item;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), int(size));

    // One scalar alone: what reads must write back the same way.
    {
        MemoryMap map;
        auto *word = placed<U16Item>(2);
        map.addItem(QStringLiteral("word"), word);
        const bool read = map.deserialise(text);
        const QJsonObject object = QJsonDocument::fromJson(text).object();
        FUZZ_CHECK(read == object.contains(QStringLiteral("baserawtype")));
        const QByteArray written = map.serialise();
        FUZZ_CHECK(map.deserialise(written));
        FUZZ_CHECK(map.serialise() == written);

        QByteArray image(8, '\0');
        FUZZ_CHECK(map.saveData(&image));
        FUZZ_CHECK(image.size() == 8);
    }

    // A map as device models build it, fed the same bytes as document and image.
    MemoryMap map;
    map.addItem(QStringLiteral("mode"), placed<U8Item>(0));
    map.addItem(QStringLiteral("port"), placed<U16Item>(1));
    map.addItem(QStringLiteral("slots"), placed<U8Array>(3, 32));
    map.addItem(QStringLiteral("masks"), placed<U16Array>(35, 16));
    auto *g826 = new Tg826;
    g826->setStartAddress(67);
    g826->setPortCount(4);
    map.addItem(QStringLiteral("g826"), g826);
    map.deserialise(text);
    map.serialise();

    QByteArray image = text;
    const bool loaded = map.loadData(&image);
    const unsigned int end = 67 + g826->getTotalSize();
    if (unsigned(image.size()) >= end)
        FUZZ_CHECK(loaded);
    const QByteArray before = image;
    if (map.saveData(&image)) {
        FUZZ_CHECK(image.size() == before.size());
        if (loaded)
            FUZZ_CHECK(image == before);
    }
    for (unsigned char port = 0; port < 6; ++port) {
        g826->EBCrc4(port);
        g826->UnavTEbit(port);
    }
    return 0;
}
