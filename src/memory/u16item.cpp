#include "memory/u16item.h"

#include "memory/itemjson_p.h"

#include <QJsonObject>

U16Item::U16Item()
{
    itemSize = 2;
    itemsCount = 1;
}

U16Item::~U16Item() = default;

void U16Item::serialise(QJsonObject &object)
{
    object.insert(BaseRawType::name, int(get()));
}

bool U16Item::deserialise(const QJsonObject &object)
{
    const auto it = object.constFind(BaseRawType::name);
    if (it == object.constEnd())
        return false;
    set(static_cast<unsigned short>(ItemJson::integer(it.value()) & 0xFFFF));
    return true;
}

void U16Item::set(unsigned short value)
{
    if (mode == 0)
        setInteger(0, 0, 2, value);
    else if (mode == 1)
        setValue(QVariant(int(value)));
}

unsigned short U16Item::get()
{
    if (mode == 0)
        return static_cast<unsigned short>(getInteger(0, 0, 2));
    if (mode == 1)
        return static_cast<unsigned short>(getValue().toUInt());
    return 0;
}
