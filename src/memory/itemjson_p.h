#ifndef ITEMJSON_P_H
#define ITEMJSON_P_H

#include <QJsonValue>
#include <QtGlobal>

#include <cmath>

namespace ItemJson {

// The integer part of a JSON number; anything else, or a number no 64-bit
// integer holds, gives 0.
inline qint64 integer(const QJsonValue &value)
{
    if (!value.isDouble())
        return 0;
    const double number = std::trunc(value.toDouble());
    if (!(number >= -9.2e18 && number <= 9.2e18))
        return 0;
    return static_cast<qint64>(number);
}

} // namespace ItemJson

#endif // ITEMJSON_P_H
