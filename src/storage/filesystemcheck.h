#ifndef FILESYSTEMCHECK_H
#define FILESYSTEMCHECK_H

#include "muxcore_export.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

class QFileInfo;
class QJsonObject;

// One entry of a snapshot tree.
struct FSItem
{
    enum Type { File = 0, Directory = 1 };

    int type = File;
    // As QFileInfo::filePath gives it, so it depends on the root path used.
    QString path;
    // Raw MD5 of the content; empty for directories and unreadable files.
    QByteArray hash;
    // In the order of the directory listing.
    QList<FSItem> children;
};

// Takes a snapshot of a file tree (an MD5 digest per file), keeps it as JSON
// text, and later reports which of the files it lists changed or went missing.
class MUXCORE_EXPORT FileSystemCheck : public QObject
{
    Q_OBJECT
public:
    explicit FileSystemCheck(QObject *parent = nullptr);

    // Suffixes without the dot, matched exactly; matching folders are skipped too.
    void addIgnoredFileTypes(QStringList types);
    // Snapshots the tree at the path (a folder or a single file).
    void setPath(QString path);
    QString toString();
    // False, leaving an empty tree, when the text is not a JSON snapshot.
    bool fromString(QString text);
    // Snapshots the path afresh and compares the stored tree with it. One line
    // per finding, "BAD HASH:<path>" or "NOT EXIST:<path>"; empty when intact.
    // Files that are new on disk are not reported.
    QString compare(QString path);

    void buildJsonObject(QJsonObject &object, FSItem const &item);
    void restoreFromJson(QJsonObject const &object, FSItem &item);
    void calcFileInfo(QFileInfo const &info, FSItem *item);
    QString compareFsItems(FSItem &stored, FSItem &fresh);

private:
    void buildItem(const QFileInfo &info, FSItem *item, QSet<QString> &ancestors);

    FSItem root;
    const QString typeKey;
    const QString pathKey;
    const QString hashKey;
    const QString childKey;
    QStringList ignoredTypes;
};

#endif // FILESYSTEMCHECK_H
