// Settings files and integrity snapshots on a file system that misbehaves:
// folders that refuse writes or vanish, files that cannot be read, links that
// lead nowhere or in circles, and a pipe that would never end.

#include <storage/devicesettingsex.h>
#include <storage/filesystemcheck.h>
#include <storage/savesettings.h>

#include "filehelpers.h"

#include <QtTest>

#include <QCryptographicHash>
#include <QTemporaryDir>

#if defined(Q_OS_LINUX)
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

// Runs file access of this thread as an unprivileged user while it lives, so
// that permissions bite also when the tests run as root.
struct Unprivileged
{
#if defined(Q_OS_LINUX)
    Unprivileged()
        : dropped(geteuid() == 0)
    {
        if (dropped)
            setfsgid(65534), setfsuid(65534);
    }
    ~Unprivileged()
    {
        if (dropped)
            setfsuid(0), setfsgid(0);
    }
    const bool dropped;
#endif
};

const QFile::Permissions openToAll = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup
    | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;

} // namespace

class tst_StorageFaults : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        dir.reset(new QTemporaryDir);
        QVERIFY(dir->isValid());
        // Others must reach inside for the unprivileged part of the tests.
        QVERIFY(QFile::setPermissions(dir->path(), openToAll));
    }
    void cleanup()
    {
        // Give everything back, so that the folder can be removed.
        QFile::setPermissions(dir->path(), openToAll);
        for (QDirIterator it(dir->path(),
                 QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                 QDirIterator::Subdirectories);
             it.hasNext();)
            if (!QFileInfo(it.next()).isSymLink())
                QFile::setPermissions(it.filePath(), openToAll | QFile::WriteGroup);
        dir.reset();
    }
    void saveIntoReadOnlyFolderAndReadUnreadable()
    {
        if (!permissionsBite())
            QSKIP("file permissions are not enforced for this process");
        QVERIFY(QDir(dir->path()).mkdir("unit"));
        QVERIFY(QFile::setPermissions(at("unit"), openToAll | QFile::WriteOther));
        const QString path = at("unit/settings.dvsf");
        DeviceSettingsEx earlier {0, "Vantor-QX10", 0, 0, {}, "earlier image"};
        QVERIFY(SaveSettings::save(earlier, path));
        const QByteArray earlierBytes = readFile(path);
        QVERIFY(QFile::setPermissions(at("unit"), openToAll & ~QFile::WriteOwner));
        DeviceSettingsEx later {0, {}, 0, 0, {}, "later image"}, untouched {0, "untouched", 0, 77, {}, {}};
        DeviceSettingsEx settings = untouched;
        {
            Unprivileged unprivileged;
            QVERIFY(!SaveSettings::save(later, path));
        }
        QVERIFY(QFile::setPermissions(path, QFile::Permissions()));
        {
            Unprivileged unprivileged;
            QVERIFY(!SaveSettings::read(settings, path));
        }
        // The digest is still brought up to date for the caller.
        QCOMPARE(later.hash, QCryptographicHash::hash("later image", QCryptographicHash::Sha256));
        QCOMPARE(settings, untouched);
        QVERIFY(QFile::setPermissions(path, openToAll));
        QCOMPARE(readFile(path), earlierBytes);
        // No temporary file is left behind beside it.
        QCOMPARE(QDir(at("unit")).entryList(QDir::Files | QDir::Hidden), QStringList {"settings.dvsf"});
    }
    void snapshotOverLinkLoopsAndPipes()
    {
        const QString root = at("tree");
        QVERIFY(QDir().mkpath(root + "/sub"));
        QVERIFY(writeFile(root + "/sub/data.bin", QByteArray(1000, 'd')));
        if (!QFile::link(root + "/b", root + "/a") || !QFile::link(root + "/a", root + "/b")
            || !QFile::link(root + "/self", root + "/self")
            || !QFile::link(root + "/gone", root + "/dangling") || !QFile::link(root, root + "/sub/up"))
            QSKIP("symbolic links are not available here");
#if defined(Q_OS_UNIX)
        QCOMPARE(mkfifo(QFile::encodeName(root + "/sub/pipe").constData(), 0600), 0);
#endif

        // Must end, and must not wait for a writer on the pipe. Links that lead
        // nowhere and pipes are not regular entries of a listing and stay out.
        FileSystemCheck check;
        check.setPath(root);
        const QString snapshot = check.toString();
        QCOMPARE(check.compare(root), QString());

        // The link back up is listed as a folder, not followed.
        FSItem top;
        check.calcFileInfo(QFileInfo(root), &top);
        QStringList names;
        for (const FSItem &sub : top.children) {
            names << sub.path;
            for (const FSItem &child : sub.children)
                names << QString("%1 %2 %3").arg(child.path).arg(child.type).arg(child.children.size());
        }
        names.sort();
        QCOMPARE(names.join('|'), QString("%1/sub|%1/sub/data.bin 0 0|%1/sub/up 1 0").arg(root));

        // Breaking the loop is no change; the data file is.
        QVERIFY(QFile::remove(root + "/b"));
        QVERIFY(writeFile(root + "/sub/data.bin", "changed"));
        FileSystemCheck stored;
        QVERIFY(stored.fromString(snapshot));
        QCOMPARE(stored.compare(root), QString("BAD HASH:" + root + "/sub/data.bin\n"));
    }

private:
    QString at(const QString &relative) const
    {
        return dir->filePath(relative);
    }
    // Whether this process is kept out of an unreadable file; false where
    // permissions cannot be made to bite.
    bool permissionsBite()
    {
        const QString probe = at("probe");
        if (!writeFile(probe, "x") || !QFile::setPermissions(probe, QFile::Permissions()))
            return false;
        Unprivileged unprivileged;
        QFile file(probe);
        return !file.open(QIODevice::ReadOnly);
    }

    QScopedPointer<QTemporaryDir> dir;
};

QTEST_MAIN(tst_StorageFaults)
#include "tst_storagefaults.moc"
