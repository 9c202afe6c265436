#ifndef FILEHELPERS_H
#define FILEHELPERS_H

#include <QByteArray>
#include <QFile>
#include <QString>

// Whole-file access for the storage tests, independent of the code under test.
inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

#endif // FILEHELPERS_H
