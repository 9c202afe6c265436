#include "storage/filesystemcheck.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// Streams the file through the digest so that memory stays flat however large
// it is. Only regular files are read: a pipe or a device could block or never
// end. A read error gives the same empty digest as a file that cannot be opened.
QByteArray md5OfFile(const QFileInfo &info)
{
    if (!info.isFile())
        return QByteArray();
    QFile file(info.filePath());
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();

    QCryptographicHash digest(QCryptographicHash::Md5);
    QByteArray chunk(64 * 1024, Qt::Uninitialized);
    for (;;) {
        const qint64 count = file.read(chunk.data(), chunk.size());
        if (count < 0)
            return QByteArray();
        if (count == 0)
            break;
        digest.addData(QByteArray::fromRawData(chunk.constData(), int(count)));
    }
    return digest.result();
}

} // namespace

FileSystemCheck::FileSystemCheck(QObject *parent)
    : QObject(parent)
    , typeKey(QStringLiteral("type"))
    , pathKey(QStringLiteral("path"))
    , hashKey(QStringLiteral("hash"))
    , childKey(QStringLiteral("child"))
{
}

void FileSystemCheck::addIgnoredFileTypes(QStringList types)
{
    ignoredTypes.append(types);
}

void FileSystemCheck::setPath(QString path)
{
    root = FSItem();
    calcFileInfo(QFileInfo(path), &root);
}

QString FileSystemCheck::toString()
{
    QJsonObject object;
    buildJsonObject(object, root);
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented));
}

bool FileSystemCheck::fromString(QString text)
{
    root = FSItem();
    const QJsonDocument document = QJsonDocument::fromJson(text.toLatin1());
    if (!document.isObject())
        return false;
    restoreFromJson(document.object(), root);
    return true;
}

QString FileSystemCheck::compare(QString path)
{
    FSItem fresh;
    calcFileInfo(QFileInfo(path), &fresh);
    return compareFsItems(root, fresh);
}

void FileSystemCheck::buildJsonObject(QJsonObject &object, FSItem const &item)
{
    object.insert(typeKey, item.type);
    object.insert(pathKey, QString::fromLatin1(item.path.toUtf8().toBase64()));
    if (item.type == FSItem::Directory) {
        QJsonArray children;
        for (const FSItem &child : item.children) {
            QJsonObject childObject;
            buildJsonObject(childObject, child);
            children.append(childObject);
        }
        object.insert(childKey, children);
    } else {
        object.insert(hashKey, QString::fromLatin1(item.hash.toHex()));
    }
}

void FileSystemCheck::restoreFromJson(QJsonObject const &object, FSItem &item)
{
    item.type = object.value(typeKey).toInt();
    item.path = QString::fromUtf8(QByteArray::fromBase64(object.value(pathKey).toString().toLatin1()));
    item.hash = QByteArray::fromHex(object.value(hashKey).toString().toLatin1());
    item.children.clear();
    const QJsonArray children = object.value(childKey).toArray();
    for (const QJsonValue &value : children) {
        FSItem child;
        restoreFromJson(value.toObject(), child);
        item.children.append(child);
    }
}

void FileSystemCheck::calcFileInfo(QFileInfo const &info, FSItem *item)
{
    if (!item)
        return;
    QSet<QString> ancestors;
    buildItem(info, item, ancestors);
}

// ancestors holds the canonical paths of the folders being listed above this
// entry: a link back to one of them is recorded but not followed, which would
// never end.
void FileSystemCheck::buildItem(const QFileInfo &info, FSItem *item, QSet<QString> &ancestors)
{
    item->path = info.filePath();
    item->hash.clear();
    item->children.clear();
    if (!info.isDir()) {
        item->type = FSItem::File;
        item->hash = md5OfFile(info);
        return;
    }

    item->type = FSItem::Directory;
    const QString canonical = info.canonicalFilePath();
    if (canonical.isEmpty() || ancestors.contains(canonical))
        return;
    ancestors.insert(canonical);

    const QFileInfoList entries = QDir(info.filePath()).entryInfoList();
    for (const QFileInfo &entry : entries) {
        const QString name = entry.fileName();
        if (name == QLatin1String(".") || name == QLatin1String(".."))
            continue;
        if (ignoredTypes.contains(entry.suffix()))
            continue;
        FSItem child;
        buildItem(entry, &child, ancestors);
        item->children.append(child);
    }
    ancestors.remove(canonical);
}

QString FileSystemCheck::compareFsItems(FSItem &stored, FSItem &fresh)
{
    if (stored.type != FSItem::Directory) {
        if (stored.hash == fresh.hash)
            return QString();
        return QStringLiteral("BAD HASH:%1\n").arg(stored.path);
    }

    // Indexed once, so that folders with many entries do not cost a search
    // per stored entry.
    QHash<QString, int> freshByPath;
    freshByPath.reserve(fresh.children.size());
    for (int i = fresh.children.size() - 1; i >= 0; --i)
        freshByPath.insert(fresh.children.at(i).path, i);

    QString report;
    for (FSItem &child : stored.children) {
        const auto found = freshByPath.constFind(child.path);
        if (found == freshByPath.constEnd())
            report += QStringLiteral("NOT EXIST:%1\n").arg(child.path);
        else
            report += compareFsItems(child, fresh.children[found.value()]);
    }
    return report;
}
