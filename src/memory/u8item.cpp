#include "memory/u8item.h"

#include "memory/itemjson_p.h"

#include <QJsonObject>

U8Item::U8Item()
{
    itemSize = 1;
    itemsCount = 1;
}

U8Item::~U8Item() = default;

void U8Item::serialise(QJsonObject &object)
{
    object.insert(BaseRawType::name, int(get()));
}

bool U8Item::deserialise(const QJsonObject &object)
{
    const auto it = object.constFind(BaseRawType::name);
    if (it == object.constEnd())
        return false;
    set(static_cast<unsigned char>(ItemJson::integer(it.value()) & 0xFF));
    return true;
}

void U8Item::set(unsigned char value)
{
    if (mode == 0)
        setInteger(0, 0, static_cast<unsigned char>(itemSize), value);
    else if (mode == 1)
        setValue(QVariant(int(value) + 1));
}

unsigned char U8Item::get()
{
    if (mode == 0)
        return static_cast<unsigned char>(getInteger(0, 0, static_cast<unsigned char>(itemSize)));
    if (mode == 1)
        return static_cast<unsigned char>(static_cast<unsigned int>(getValue().toInt()) - 1u);
    return 0;
}
