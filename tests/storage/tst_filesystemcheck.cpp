#include <storage/filesystemcheck.h>

#include <QtTest>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <unistd.h>

namespace {

// MD5 of "abc", from the algorithm's published test vectors.
const QByteArray md5OfAbc = "900150983cd24fb0d6963f7d28e17f72";

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QJsonObject childNamed(const QJsonObject &node, const QString &path)
{
    const QJsonArray children = node.value("child").toArray();
    for (const QJsonValue &value : children) {
        const QJsonObject child = value.toObject();
        if (QByteArray::fromBase64(child.value("path").toString().toLatin1()) == path.toUtf8())
            return child;
    }
    return QJsonObject();
}

} // namespace

class tst_FileSystemCheck : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void jsonForm();
    void intactTreeThroughJson();
    void changes_data();
    void changes();
    void ignoredSuffixes();
    void largeFileStreamsCorrectDigest();
    void deepTree();
    void linkBackUpTheTreeEnds();
    void unreadableFileHasEmptyDigest();
    void fromStringRejects_data();
    void fromStringRejects();
    void hostileSnapshot();

private:
    QString root() const { return dir->path() + "/tree"; }
    QString at(const QString &relative) const { return root() + '/' + relative; }

    QTemporaryDir *dir = nullptr;
};

void tst_FileSystemCheck::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
    QVERIFY(QDir().mkpath(at("sub/deep")));
    QVERIFY(writeFile(at("a.txt"), "abc"));
    QVERIFY(writeFile(at("sub/b.bin"), QByteArray("\x00\x01\x02", 3)));
    QVERIFY(writeFile(at("sub/deep/c.txt"), "deep"));
    QVERIFY(writeFile(at("empty"), ""));
}

void tst_FileSystemCheck::cleanup()
{
    delete dir;
    dir = nullptr;
}

void tst_FileSystemCheck::jsonForm()
{
    const QString unicodeName = QString::fromUtf8("Überprüfung");
    QVERIFY(writeFile(at(unicodeName), "abc"));

    FileSystemCheck check;
    check.setPath(root());
    const QJsonObject top = QJsonDocument::fromJson(check.toString().toUtf8()).object();

    QCOMPARE(top.value("type").toInt(-1), 1);
    QCOMPARE(top.value("path").toString().toLatin1(), root().toUtf8().toBase64());
    QVERIFY(!top.contains("hash"));
    QCOMPARE(top.value("child").toArray().size(), 4);

    const QJsonObject file = childNamed(top, at(unicodeName));
    QCOMPARE(file.value("type").toInt(-1), 0);
    QCOMPARE(file.value("hash").toString().toLatin1(), md5OfAbc);
    QVERIFY(!file.contains("child"));

    const QJsonObject sub = childNamed(top, at("sub"));
    QCOMPARE(sub.value("type").toInt(-1), 1);
    QCOMPARE(childNamed(childNamed(sub, at("sub/deep")), at("sub/deep/c.txt")).value("hash").toString(),
        QString::fromLatin1(QCryptographicHash::hash("deep", QCryptographicHash::Md5).toHex()));
    QCOMPARE(childNamed(top, at("empty")).value("hash").toString(),
        QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
}

void tst_FileSystemCheck::intactTreeThroughJson()
{
    FileSystemCheck taken;
    taken.setPath(root());
    QCOMPARE(taken.compare(root()), QString());

    FileSystemCheck restored;
    QVERIFY(restored.fromString(taken.toString()));
    QCOMPARE(restored.toString(), taken.toString());
    QCOMPARE(restored.compare(root()), QString());
}

void tst_FileSystemCheck::changes_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("report");

    QTest::newRow("one byte changed") << "alter"
                                      << "sub/deep/c.txt"
                                      << "BAD HASH:%1/sub/deep/c.txt\n";
    QTest::newRow("file emptied") << "empty"
                                  << "a.txt"
                                  << "BAD HASH:%1/a.txt\n";
    QTest::newRow("file removed") << "remove"
                                  << "sub/b.bin"
                                  << "NOT EXIST:%1/sub/b.bin\n";
    QTest::newRow("folder removed") << "removeDir"
                                    << "sub"
                                    << "NOT EXIST:%1/sub\n";
    QTest::newRow("file added") << "add"
                                << "sub/new.txt"
                                << "";
    QTest::newRow("folder added") << "addDir"
                                  << "extra"
                                  << "";
    QTest::newRow("file turned into folder") << "fileToDir"
                                             << "a.txt"
                                             << "BAD HASH:%1/a.txt\n";
}

void tst_FileSystemCheck::changes()
{
    QFETCH(QString, action);
    QFETCH(QString, target);
    QFETCH(QString, report);

    FileSystemCheck check;
    check.setPath(root());
    QVERIFY(check.fromString(check.toString()));

    const QString path = at(target);
    if (action == "alter") {
        QVERIFY(writeFile(path, "deeP"));
    } else if (action == "empty") {
        QVERIFY(writeFile(path, ""));
    } else if (action == "remove") {
        QVERIFY(QFile::remove(path));
    } else if (action == "removeDir") {
        QVERIFY(QDir(path).removeRecursively());
    } else if (action == "add") {
        QVERIFY(writeFile(path, "new"));
    } else if (action == "addDir") {
        QVERIFY(QDir().mkpath(path + "/inner"));
    } else if (action == "fileToDir") {
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkdir(path));
    }
    QCOMPARE(check.compare(root()), report.arg(root()));
}

void tst_FileSystemCheck::ignoredSuffixes()
{
    QVERIFY(writeFile(at("a.log"), "log"));
    QVERIFY(writeFile(at("sub/b.LOG"), "kept: suffixes match case-sensitively"));
    QVERIFY(QDir().mkpath(at("cache.tmp/inner")));
    QVERIFY(writeFile(at("cache.tmp/inner/x.txt"), "x"));

    FileSystemCheck check;
    check.addIgnoredFileTypes({"log"});
    check.addIgnoredFileTypes({"tmp"});
    check.setPath(root());
    const QString snapshot = check.toString();
    const QByteArray json = snapshot.toLatin1();
    QVERIFY(!json.contains(at("a.log").toUtf8().toBase64()));
    QVERIFY(!json.contains(at("cache.tmp").toUtf8().toBase64()));
    QVERIFY(json.contains(at("sub/b.LOG").toUtf8().toBase64()));

    QVERIFY(writeFile(at("a.log"), "changed"));
    QVERIFY(QDir(at("cache.tmp")).removeRecursively());
    QCOMPARE(check.compare(root()), QString());
    QVERIFY(QFile::remove(at("sub/b.LOG")));
    QCOMPARE(check.compare(root()), QStringLiteral("NOT EXIST:%1\n").arg(at("sub/b.LOG")));
}

void tst_FileSystemCheck::largeFileStreamsCorrectDigest()
{
    // Larger than any sensible read chunk and not a multiple of one.
    QByteArray content(3 * 1024 * 1024 + 17, Qt::Uninitialized);
    for (int i = 0; i < content.size(); ++i)
        content[i] = char((i * 7 + i / 4096) & 0xFF);
    QVERIFY(writeFile(at("big.bin"), content));

    FileSystemCheck check;
    check.setPath(root());
    const QJsonObject top = QJsonDocument::fromJson(check.toString().toUtf8()).object();
    QCOMPARE(childNamed(top, at("big.bin")).value("hash").toString().toLatin1(),
        QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex());

    content[content.size() - 1] = char(content.at(content.size() - 1) ^ 1);
    QVERIFY(writeFile(at("big.bin"), content));
    QCOMPARE(check.compare(root()), QStringLiteral("BAD HASH:%1\n").arg(at("big.bin")));
}

void tst_FileSystemCheck::deepTree()
{
    QString relative = "d";
    for (int level = 1; level < 120; ++level)
        relative += "/d";
    QVERIFY(QDir().mkpath(at(relative)));
    QVERIFY(writeFile(at(relative + "/leaf"), "leaf"));

    FileSystemCheck taken;
    taken.setPath(root());
    FileSystemCheck restored;
    QVERIFY(restored.fromString(taken.toString()));
    QCOMPARE(restored.compare(root()), QString());

    QVERIFY(writeFile(at(relative + "/leaf"), "Leaf"));
    QCOMPARE(restored.compare(root()), QStringLiteral("BAD HASH:%1\n").arg(at(relative + "/leaf")));
}

void tst_FileSystemCheck::linkBackUpTheTreeEnds()
{
    if (!QFile::link(root(), at("sub/deep/up")) || !QFile::link(at("sub"), at("sub/deep/sideways")))
        QSKIP("symbolic links are not available here");

    FileSystemCheck check;
    check.setPath(root());
    QCOMPARE(check.compare(root()), QString());

    // A link back up is listed as a folder but not followed.
    const QJsonObject top = QJsonDocument::fromJson(check.toString().toUtf8()).object();
    const QJsonObject deep = childNamed(childNamed(top, at("sub")), at("sub/deep"));
    const QJsonObject up = childNamed(deep, at("sub/deep/up"));
    QCOMPARE(up.value("type").toInt(-1), 1);
    QVERIFY(up.value("child").toArray().isEmpty());
    QVERIFY(childNamed(deep, at("sub/deep/sideways")).value("child").toArray().isEmpty());
}

void tst_FileSystemCheck::unreadableFileHasEmptyDigest()
{
    if (::geteuid() == 0)
        QSKIP("file permissions do not bind the superuser");
    FileSystemCheck check;
    check.setPath(root());
    QVERIFY(QFile::setPermissions(at("a.txt"), QFileDevice::WriteOwner));
    QCOMPARE(check.compare(root()), QStringLiteral("BAD HASH:%1\n").arg(at("a.txt")));

    check.setPath(root());
    const QJsonObject top = QJsonDocument::fromJson(check.toString().toUtf8()).object();
    QCOMPARE(childNamed(top, at("a.txt")).value("hash").toString(), QString());
    QVERIFY(QFile::setPermissions(at("a.txt"), QFileDevice::ReadOwner | QFileDevice::WriteOwner));
}

void tst_FileSystemCheck::fromStringRejects_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << "";
    QTest::newRow("not json") << "BAD HASH:x";
    QTest::newRow("array") << "[1, 2]";
    QTest::newRow("cut off") << "{\"type\": 1, \"child\": [";
}

void tst_FileSystemCheck::fromStringRejects()
{
    QFETCH(QString, text);

    FileSystemCheck check;
    check.setPath(root());
    QVERIFY(!check.fromString(text));
    QCOMPARE(check.getRoot().children.size(), 0);
    QVERIFY(check.getRoot().path.isEmpty());
}

void tst_FileSystemCheck::hostileSnapshot()
{
    // Wrong types and junk in every place: read as far as it makes sense.
    const QString text = QStringLiteral(
        "{\"type\": \"dir\", \"path\": 5, \"hash\": \"zz\", \"child\": [3, \"x\", null,"
        " {\"type\": 1, \"child\": {\"a\": 1}}, {\"type\": 0, \"path\": \"%1\", \"hash\": \"00\"}]}")
                             .arg(QString::fromLatin1(at("a.txt").toUtf8().toBase64()));
    FileSystemCheck check;
    QVERIFY(check.fromString(text));
    QCOMPARE(check.getRoot().children.size(), 5);
    QCOMPARE(check.getRoot().children.at(4).path, at("a.txt"));

    FSItem stored = check.getRoot();
    stored.type = FSItem::Directory;
    FSItem fresh;
    check.calcFileInfo(QFileInfo(root()), &fresh);
    fresh.path = stored.path;
    // The three junk entries share an empty path that is not on disk.
    QCOMPARE(check.compareFsItems(stored, fresh),
        QStringLiteral("NOT EXIST:\nNOT EXIST:\nNOT EXIST:\nNOT EXIST:\nBAD HASH:%1\n").arg(at("a.txt")));
}

QTEST_GUILESS_MAIN(tst_FileSystemCheck)
#include "tst_filesystemcheck.moc"
