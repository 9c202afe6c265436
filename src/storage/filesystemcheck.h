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

/// One entry of a snapshot tree.
struct FSItem
{
    /// What the entry is.
    enum Type {
        File = 0, ///< A file, with a digest.
        Directory = 1 ///< A folder, with children.
    };

    int type = File; ///< A #Type value.
    /// As QFileInfo::filePath gives it, so it depends on the root path used.
    QString path;
    /// Raw MD5 of the content; empty for directories and unreadable files.
    QByteArray hash;
    /// In the order of the directory listing.
    QList<FSItem> children;
};

/**
 * Takes a snapshot of a file tree (an MD5 digest per file), keeps it as JSON
 * text, and later reports which of the files it lists changed or went missing.
 *
 * A host snapshots an installation or a data folder with setPath() and
 * stores toString(); later it restores the text with fromString() and calls
 * compare() on the same path. Paths are stored as given, so snapshot and
 * compare with the same root path.
 */
class MUXCORE_EXPORT FileSystemCheck : public QObject
{
    Q_OBJECT
public:
    /// An empty snapshot, nothing ignored.
    explicit FileSystemCheck(QObject *parent = nullptr);

    /// Adds suffixes to leave out, without the dot, matched exactly; matching folders are skipped too.
    void addIgnoredFileTypes(QStringList types);
    /// Snapshots the tree at the path (a folder or a single file).
    void setPath(QString path);
    /// The snapshot as indented JSON text.
    QString toString();
    /// Restores a snapshot from toString() text; false, leaving an empty tree, when the text is not one.
    bool fromString(QString text);
    /**
     * Snapshots the path afresh and compares the stored tree with it.
     *
     * @return one line per finding, "BAD HASH:<path>" or "NOT EXIST:<path>";
     * empty when intact. Files that are new on disk are not reported.
     */
    QString compare(QString path);

    /// Writes @p item and its children into @p object, as toString() does.
    void buildJsonObject(QJsonObject &object, FSItem const &item);
    /// Reads @p item and its children back from @p object.
    void restoreFromJson(QJsonObject const &object, FSItem &item);
    /// Fills @p item from the entry at @p info, with its children.
    void calcFileInfo(QFileInfo const &info, FSItem *item);
    /// The compare() report of two trees.
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
