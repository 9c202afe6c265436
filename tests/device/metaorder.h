#ifndef METAORDER_H
#define METAORDER_H

#include <QMetaMethod>
#include <QString>

// A class's own signals, then "|" and its slots, as the meta-object lists them.
inline QString methodsOf(const QMetaObject &meta)
{
    QString out;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() == QMetaMethod::Slot && !out.contains(QLatin1Char('|')))
            out += QStringLiteral("| ");
        out += QString::fromLatin1(method.methodSignature()) + QLatin1Char(' ');
    }
    return out.trimmed();
}

#endif // METAORDER_H
